#pragma once

#include "rdservice/CStkUnClosedCompacts.h"
#include "vn/CAccount.h"
#include "vn/ITradeDockableWidget.h"

#include <QTimer>

#include <set>
#include <string>
#include <vector>

class COrderForm;
class QSplitter;

namespace VN {
class CCompactsPanel;
class CSingleAccountCommandModeComboBox;
struct CPlaceCommandParameter;
}  // namespace VN

/// A form for orders that return or repay debts, beside the open compacts of the account they are for. GUI thread.
///
/// In the user configuration's compact mode it serves every credit account that is logged in: an order goes to all of
/// them. Otherwise it serves the one chosen.
class COrderPanel : public VN::ITradeDockableWidget, public VN::IAccountDemand {
 public:
  static constexpr const char* TYPE_KEY = "order";

  COrderPanel(int number, QWidget* parent);
  ~COrderPanel() override;

  /// JSON: the side of the compacts, the form's length, account, operation, repay type, select column, and the
  /// parameter string of the compacts panel. What cannot be read leaves things as they are.
  void setParam(const QString& param) override;
  QString param() const override;
  void refreshAccounts() override;
  bool handleEvent(int type, int p1, int p2, QString text, void* data) override;
  bool needsAccount(const std::string& accountKey) const override;

  /// The user configuration's compact mode has changed.
  void updateCompactMode(bool compact);
  VN::CCompactsPanel& compacts() const { return *m_compacts; }

 private:
  void build(int number);
  void moveCompacts(int side);
  /// Pixels of the form beside or above the compacts.
  void setFormLength(int length);
  void updateFigures();

  // accounts
  void chooseAccount();
  void requestAccounts();
  std::string chosenAccount() const;
  std::vector<VN::CAccountPtr> readyAccounts() const;

  // orders
  void followOperation();
  void takeCompact(const rdservice::CStkUnClosedCompactsPtr& compact);
  void placeOrder();
  /// Empty when the order can be placed, which `command` then says; else why not, for users.
  QString makeCommand(VN::CPlaceCommandParameter& command);
  QString questionOf(const VN::CPlaceCommandParameter& command) const;

  COrderForm* m_form = nullptr;
  QWidget* m_formArea = nullptr;
  QSplitter* m_splitter = nullptr;
  VN::CCompactsPanel* m_compacts = nullptr;
  VN::CSingleAccountCommandModeComboBox* m_commandMode = nullptr;
  int m_side;
  bool m_isReady = false;          ///< false while it is built or filled: what its boxes report then is not the user's
  std::string m_shownAccount;      ///< of the compacts panel
  QString m_keptAccount;           ///< account of the parameter string until it has logged in or another was chosen
  std::set<std::string> m_served;  ///< accounts that the compacts panel was asked for since they logged in
  QTimer m_updates;
};
