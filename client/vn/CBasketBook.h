#pragma once

#include "utils/CCallbackList.h"
#include "vn/CKeptFile.h"
#include "vn/basket_file.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace VN {

/// The user's baskets and their file. GUI thread.
class CBasketBook {
 public:
  /// Reads the file; an absent one holds no baskets. An empty `path` keeps the baskets in memory only.
  explicit CBasketBook(const QString& path);

  CBasketPtr get(const QString& name);
  const std::vector<CBasketPtr>& named();
  /// Returns why the baskets could not be written, for users.
  QString save();
  /// As `save`; without value when nothing was done.
  std::optional<QString> remove(const QString& name);
  std::optional<QString> rename(const QString& from, const QString& to);

  utils::CSubscriptionPtr subscribe(std::function<void()> callback) { return m_changed.add(std::move(callback)); }
  /// What users must know about the file as it was found.
  const QStringList& messages() const { return m_file.messages(); }

 private:
  /// Takes over handed out baskets that have a name now.
  void settle();
  CBasketPtr find(const QString& name) const;

  CKeptFile m_file;
  std::vector<CBasketPtr> m_named;
  std::vector<CBasketPtr> m_unnamed;  ///< handed out for new names
  utils::CCallbackList<> m_changed;
};

}  // namespace VN
