#pragma once

#include "utils/CCallbackList.h"
#include "vn/CKeptFile.h"
#include "vn/CUserConfig.h"

#include <map>
#include <set>
#include <string>
#include <utility>

namespace VN {

/// What the client remembers of the user's choices. Each change is written at once. GUI thread.
class CChoiceBook {
 public:
  /// Reads the file; without one everything is as at first. An empty `path` keeps the choices in memory only.
  explicit CChoiceBook(const QString& path);

  bool isCompactMode() const { return m_choices.isCompactMode; }
  void setCompactMode(bool compact);
  bool isOrderConfirmed(const std::string& accountKey) const { return m_choices.unconfirmed.count(accountKey) == 0; }
  void setOrderConfirmed(const std::string& accountKey, bool confirmed);
  const QString& fileFolder() const { return m_choices.fileFolder; }
  void setFileFolder(const QString& folder);
  bool getTableSetting(CTableConfigInfo& info) const;
  void saveTableSetting(const CTableConfigInfo& info);

  utils::CSubscriptionPtr subscribe(std::function<void()> callback) { return m_changed.add(std::move(callback)); }
  const QStringList& messages() const { return m_file.messages(); }

 private:
  struct CChoices {
    bool isCompactMode = false;
    std::set<std::string> unconfirmed;  ///< keys of accounts whose orders leave at once
    QString fileFolder;
    std::map<std::pair<std::string, int>, QString> layouts;  ///< by panel and table
  };

  static QByteArray textOf(const CChoices& choices);
  /// Returns what is wrong with the text.
  static QString read(const QByteArray& text, CChoices& choices);
  void change();

  CKeptFile m_file;
  CChoices m_choices;
  utils::CCallbackList<> m_changed;
};

}  // namespace VN
