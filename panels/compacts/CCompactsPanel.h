#pragma once

#include "panels_api.h"
#include "rdservice/meta_types.h"
#include "rdservice/rdservice_enums.h"
#include "utils/CSubscription.h"
#include "vn/ITradeDockableWidget.h"

#include <QMap>

#include <set>
#include <string>

class QTimer;

namespace GW {
class CAutoExpandToolBar;
class CComboBox;
class CRadioButtonGroup;
}  // namespace GW

namespace VN {

class CCompactsBaseTable;
class CCompactsChangeTable;
class CCompactsStaticsTable;
class CCountDownButton;

/// The dockable panel that shows the compacts of a credit account. GUI thread, unless a member says otherwise.
///
/// Whatever is not there in a layout (a table, the combo box) makes the operations on it do nothing.
class PANELS_API CCompactsPanel : public ITradeDockableWidget {
  Q_OBJECT
 public:
  /// `mode` 0 is the independent panel.
  CCompactsPanel(int panelId, QWidget* parent, int mode);
  ~CCompactsPanel() override;

  /// Fields joined by "|": the unclosed table's layout, the closed table's, an empty one, the view's number, the change
  /// table's layout, the statistics table's. Those of a table that is not there are left out, but read at these places.
  void setParam(const QString& param) override;
  QString param() const override;
  void requestAccount(const rdservice::CAccountInfo& account) override;
  void refreshAccounts() override;
  void clear() override;
  void adjustTableWidth() override;
  bool handleEvent(int type, int p1, int p2, QString text, void* data) override;

  /// Fills the combo box with the credit accounts that are logged in.
  void initAccountCombobox();
  /// Shows an account in every table. `query`: the tables may query, if the query rules allow it; `userChosen`: the
  /// user chose it, so that the tables also answer when they show it already.
  void setAccount(const std::string& accountKey, bool query, bool userChosen);

 public Q_SLOTS:
  void slotLoginStatus(const rdservice::CAccountInfoPtr& account, rdservice::EBROKER_LOGIN_STATUS status,
                       std::string message);
  void slotQueryData();
  void slotTimeout();

 private:
  // frame
  void createUi();
  /// A table of unclosed (id 0) or closed (id 1) compacts.
  CCompactsBaseTable* createTable(int tableId, QWidget* parent);

  // accounts
  void requestAccount(const std::string& accountKey);
  void doRequestAccount(const std::string& accountKey);
  void addAccountItem(const rdservice::CAccountInfo& account);
  void followCurrentAccount(const QString& remembered);
  /// Any thread: called by the data centre.
  void onStkUnClosedCompacts(const rdservice::IDataPtr& data);
  void onStkClosedCompacts(const rdservice::IDataPtr& data);

  // query cycle
  bool startQuery(bool byRefreshButton);
  void handleButtonClicked(int id);
  void switchView(int id);
  void refreshTablesData(const std::string& accountKey);

  const int m_mode;
  std::set<std::string> m_requestedAccounts;
  GW::CAutoExpandToolBar* m_toolbar = nullptr;
  GW::CComboBox* m_accountCombo = nullptr;
  GW::CRadioButtonGroup* m_radioGroup = nullptr;
  CCountDownButton* m_refreshButton = nullptr;
  CCompactsBaseTable* m_unclosedTable = nullptr;
  CCompactsBaseTable* m_closedTable = nullptr;
  CCompactsChangeTable* m_changeTable = nullptr;  ///< only with the right to change details
  CCompactsStaticsTable* m_staticsTable = nullptr;
  /// By account key; dropping a handle ends its calls of onStkUnClosedCompacts, onStkClosedCompacts.
  QMap<QString, utils::CSubscriptionPtr> m_unclosedSubscriptions;
  QMap<QString, utils::CSubscriptionPtr> m_closedSubscriptions;
  QTimer* m_refreshTimer = nullptr;
  /// False while createUi runs: controls report nothing to a panel that is half built.
  bool m_uiReady = false;
};

}  // namespace VN
