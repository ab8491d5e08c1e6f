#pragma once

#include "dialogs/CSecuRepayEntry.h"
#include "gw/CCommonDialog.h"
#include "rdservice/CAccountData.h"

#include <list>
#include <map>

namespace GW {
class CMediumNormalButton;
class COddEvenRowTable;
}  // namespace GW

namespace VN {

/// Shows which borrowed securities would be returned, and lets the user change how many shares of each. It places no
/// orders: the caller reads the volumes from its entries when exec() has given 1. It deletes itself when it is closed.
/// GUI thread.
class CSecuRepayComfirmDialog : public GW::CCommonDialog {
  Q_OBJECT

 public:
  CSecuRepayComfirmDialog(const QString& title, QWidget* parent);
  ~CSecuRepayComfirmDialog() override;

  /// Shows a row for each entry, instead of those before. The entries, each with account and position, outlive the
  /// dialog, which writes the edited volumes into them.
  void setData(std::list<CSecuRepayEntry>& entries, const rdservice::CAccountDataPtr& accountData);

  bool handleEvent(int type, int p1, int p2, QString text, void* data) override;

 private:
  QWidget* makeButtonRow(QWidget* parent);
  void showEntry(int row, const CSecuRepayEntry& entry);
  /// Takes what the user has entered for a row over into its entry.
  void setVolume(int row, const QString& text);

  GW::COddEvenRowTable* m_table;
  GW::CMediumNormalButton* m_ok = nullptr;
  GW::CMediumNormalButton* m_cancel = nullptr;
  std::map<int, CSecuRepayEntry*> m_entries;  ///< by row, as it was filled
};

}  // namespace VN
