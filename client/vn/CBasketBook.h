#pragma once

#include "utils/CCallbackList.h"
#include "vn/basket_file.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace VN {

/// The user's baskets and their file. GUI thread.
///
/// The file is replaced as a whole or not at all. One that cannot be understood is renamed, and one that can neither be
/// read nor renamed is not written to.
class CBasketBook {
 public:
  /// Reads the file; an absent one holds no baskets. An empty `path` keeps the baskets in memory only.
  explicit CBasketBook(const QString& path);

  CBasketPtr get(const QString& name);
  const std::vector<CBasketPtr>& named();
  /// Returns why the baskets could not be written, for users.
  QString save();
  bool remove(const QString& name);
  bool rename(const QString& from, const QString& to);

  utils::CSubscriptionPtr subscribe(std::function<void()> callback) { return m_changed.add(std::move(callback)); }
  /// What users must know about the file as it was found.
  const QStringList& messages() const { return m_messages; }

 private:
  void read();
  void keepAside(const QString& why);
  void report(const QString& message);
  /// Takes over handed out baskets that have a name now.
  void settle();
  CBasketPtr find(const QString& name) const;

  const QString m_path;
  bool m_mayWrite = true;
  std::vector<CBasketPtr> m_named;
  std::vector<CBasketPtr> m_unnamed;  ///< handed out for new names
  utils::CCallbackList<> m_changed;
  QStringList m_messages;
};

}  // namespace VN
