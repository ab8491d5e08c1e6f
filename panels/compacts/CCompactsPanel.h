#pragma once

#include "bson/BSONObj.h"
#include "compacts/push_load.h"
#include "panels_api.h"
#include "rdservice/CCodeOrderParam.h"
#include "rdservice/CCreditCompactRenewalApply.h"
#include "rdservice/meta_types.h"
#include "rdservice/rdservice_enums.h"
#include "utils/CLifeline.h"
#include "utils/CSubscription.h"
#include "utils/RDError.h"
#include "vn/CAccount.h"
#include "vn/CSingleAccountCommandModeComboBox.h"
#include "vn/ITradeDockableWidget.h"

#include <QMap>
#include <QPointer>
#include <QVector>

#include <map>
#include <set>
#include <string>
#include <vector>

class QTimer;

namespace GW {
class CAutoExpandToolBar;
class CBaseTableColumnLineeditDelegate;
class CComboBox;
class CComboPushButton;
class CRadioButtonGroup;
class CSimpleTextWidget;
class CSmallNoNormalButton;
}  // namespace GW

namespace rdservice {
class CAccountData;
using CAccountDataPtr = boost::shared_ptr<CAccountData>;
}  // namespace rdservice

namespace VN {

class CCompactsBaseTable;
class CCompactsChangeTable;
class CCompactsStaticsTable;
class CCountDownButton;

/// The dockable panel that shows the compacts of a credit account. GUI thread, unless a member says otherwise.
///
/// By itself (mode 0) it shows one of up to five views of the account chosen in its combo box. Inside an order panel
/// (mode 1) it shows the unclosed compacts of the account that its host gives it. Whatever is not there in a layout (a
/// table, the combo box) makes the operations on it do nothing.
class PANELS_API CCompactsPanel : public ITradeDockableWidget {
  Q_OBJECT
 public:
  /// `mode`: 0 by itself, 1 inside an order panel, which is then `parent` or one of its parents.
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
  bool eventFilter(QObject* watched, QEvent* event) override;
  bool handleEvent(int type, int p1, int p2, QString text, void* data) override;

  /// Fills the combo box with the credit accounts that are logged in.
  void initAccountCombobox();
  /// Shows an account in every table. `query`: the tables may query, if the query rules allow it; `userChosen`: the
  /// user chose it, so that the tables also answer when they show it already.
  void setAccount(const std::string& accountKey, bool query, bool userChosen);
  /// What pushes have kept the tables waiting with since it was last asked.
  CPushLoad takePushLoad();

  // --- for the order panel around it ---

  /// What the order panel is about to do decides which compacts are shown.
  void setOperationType(rdservice::EOperationType operationType, rdservice::ERepayType repayType);
  /// Stores whether order panels serve several accounts and tells the host by EventCompactMode.
  void setCompactMode(bool compact);
  /// Shows that mode on the compact-mode button.
  void updateCompactIndex(bool compact);
  void setCompactBrushSourceType(rdservice::EKVCompactBrushSource brushSource);
  /// Appended to the toolbar, which owns it from now on; follows `setAccount`.
  void setCommandModeComboBox(CSingleAccountCommandModeComboBox* combo);
  void setSelectColumnVisible(bool visible);
  /// Selects the compact of that key, if the table holds it.
  void setSelectCompact(const std::string& key);
  /// Null when none is selected.
  rdservice::CStkUnClosedCompactsPtr getSelectCompact() const;
  void clearSelect();
  /// Yuan owed for dividends and rights, over every compact that the unclosed table holds, displayed or not.
  double getEquityCompensation() const;
  /// Asks the user whether to repay cash debt by selling securities, and to return lent ones by buying them, and places
  /// what the user wants as one batch.
  void doRepayUnRepayStkCompactsOpration(std::vector<rdservice::CCodeOrderParam>& securitiesOrders,
                                         std::vector<rdservice::CCodeOrderParam>& cashOrders);
  /// Yuan of interest and, unless the user has the right to see it without, fees of the compact; 0 for null.
  double getInterestFee(const rdservice::CStkUnClosedCompactsPtr& compact) const;

 Q_SIGNALS:
  /// Inside an order panel: the user double-clicked an unclosed compact.
  void sigDoubleClickCompact(rdservice::CStkUnClosedCompactsPtr compact);
  /// The counter has answered a request for so many repay priorities. Emitted on a service thread.
  void sigOperatorInfo(QString accountID, int nRepayPriority, std::vector<utils::RDError> error,
                       std::vector<rdservice::IDataPtr> resp);
  /// The counter has answered an application for renewal. Emitted on a service thread.
  void sigOperatorCompactRenewInfo(rdservice::CCreditCompactRenewalApplyPtr apply, utils::RDError rdError,
                                   std::vector<rdservice::IDataPtr> vData);

 public Q_SLOTS:
  /// Tells the user how many priorities were cleared, saved and refused.
  void slotOperatorInfo(QString accountID, int nRepayPriority, std::vector<utils::RDError> error,
                        std::vector<rdservice::IDataPtr> resp);
  void slotOperatorCompactRenewInfo(rdservice::CCreditCompactRenewalApplyPtr apply, utils::RDError error,
                                    std::vector<rdservice::IDataPtr> resp);
  /// Tells the host by EventPanelPosition to which side the user wants the panel.
  void slotTableLayoutClicked(bool checked, int area, QString text);
  void slotLoginStatus(const rdservice::CAccountInfoPtr& account, rdservice::EBROKER_LOGIN_STATUS status,
                       std::string message);
  void slotQueryData();
  void slotTimeout();

 protected:
  void resizeEvent(QResizeEvent* event) override;
  bool event(QEvent* event) override;

  // repay priorities
  /// Whether a text can be a priority: 1 to 999999, "0" or nothing.
  bool isNumLegal(const QString& text) const;
  /// Whether the account takes part in saving and clearing: a credit account that is logged in.
  bool isAccontLegal(const CAccountPtr& account) const;
  bool hasPrioritySettingAuth() const;
  /// Gives the displayed rows the priorities 1, 2, 3 and so on; nothing is sent.
  void priorityOrderSetting();
  void savePriority();
  void saveRepayPrioritySetting(rdservice::CAccountInfo account);
  void clearPriority();
  void clearAllPrioritySetting(rdservice::CAccountInfo account);

  // repay priorities in files
  void tryExportRepayPriority();
  /// Whether the displayed rows were written. The name's end decides the container.
  bool doExport(const QString& path);
  void tryImportRepayPriority();
  /// Takes one line of a file over: 0 rejected, 1 skipped, 2 applied.
  int doImport(const QString& line, const QString& separator);

 private:
  // layout
  void createUi();
  void createIndependentUi();
  void createOrderPanelUi();
  void addRadioButtons();
  void addPriorityButtons();
  void addRenewalLink();
  void createPositionMenu();
  void placeInOrderPanel();
  /// A table of unclosed (id 0) or closed (id 1) compacts.
  CCompactsBaseTable* createTable(int tableId, QWidget* parent);

  // accounts
  void requestAccount(const std::string& accountKey);
  void doRequestAccount(const std::string& accountKey);
  void addAccountItem(const rdservice::CAccountInfo& account);
  void followCurrentAccount(const QString& remembered);
  // Any thread: called by the data centre.
  void onStkUnClosedCompacts(const rdservice::IDataPtr& data);
  void onStkClosedCompacts(const rdservice::IDataPtr& data);
  void onClearAccountDatas(const std::string& accountKey, int dataType);

  // query cycle
  bool startQuery(bool byRefreshButton);
  void handleButtonClicked(int id);
  void switchView(int id);
  void refreshByHand();
  /// Whether the user says yes, and the panel is still there.
  bool confirm(const QString& question);
  void refreshTablesData(const std::string& accountKey);
  static rdservice::EKVCompactType getCurrentCompactType(rdservice::EOperationType operationType,
                                                         rdservice::ERepayType repayType);

  // repay priorities
  /// The edit store of the priorities; null without its column.
  GW::CBaseTableColumnLineeditDelegate* priorityEdits() const;
  /// What the user typed for the compact is taken, or taken back with a tip.
  void checkPriorityCell(const QString& text, const rdservice::IDataPtr& record);
  /// Sends the three lists of a request, unless one is empty. `extra`: the stock key by field A.
  void operatorInfo(const rdservice::CAccountDataPtr& account, const std::string& first, const std::string& second,
                    const std::string& third, int nRepayPriority, const std::map<std::string, std::string>& extra);
  /// Service thread.
  void onOperatorInfo(const std::string& accountID, const std::string& accountKey, int nRepayPriority,
                      const std::map<std::string, std::string>& extra, const std::vector<utils::RDError>& error,
                      const std::vector<rdservice::IDataPtr>& resp);

  // renewal
  /// Asks the user, then applies for the compacts that are ticked.
  void applyRenewal();
  void operatorCompactRenewInfo(const QVector<rdservice::CStkUnClosedCompactsPtr>& compacts);
  /// Service thread.
  void onOperatorCompactRenewInfo(const rdservice::CCreditCompactRenewalApplyPtr& apply,
                                  const rdservice::CStkUnClosedCompactsPtr& compact, const utils::RDError& error,
                                  const std::vector<rdservice::IDataPtr>& resp, const bson::BSONObj& reply);

  const int m_mode;
  std::set<std::string> m_requestedAccounts;
  GW::CAutoExpandToolBar* m_toolbar = nullptr;
  GW::CComboBox* m_accountCombo = nullptr;             ///< mode 0
  GW::CRadioButtonGroup* m_radioGroup = nullptr;       ///< mode 0
  QList<GW::CSmallNoNormalButton*> m_priorityButtons;  ///< mode 0, only with the right to set repay priorities
  CCountDownButton* m_refreshButton = nullptr;
  QPointer<CSingleAccountCommandModeComboBox> m_commandModeCombo;  ///< only when the host gave one
  CCompactsBaseTable* m_unclosedTable = nullptr;
  CCompactsBaseTable* m_closedTable = nullptr;      ///< mode 0
  CCompactsChangeTable* m_changeTable = nullptr;    ///< mode 0, only with the right to change details
  CCompactsStaticsTable* m_staticsTable = nullptr;  ///< mode 0
  int m_operationType = -1;                      ///< rdservice::EOperationType as the host gave it last; -1 until then
  GW::CSimpleTextWidget* m_renewLink = nullptr;  ///< mode 0, only with the right to renew
  /// By account key; dropping a handle ends its calls of onStkUnClosedCompacts, onStkClosedCompacts.
  QMap<QString, utils::CSubscriptionPtr> m_unclosedSubscriptions;
  QMap<QString, utils::CSubscriptionPtr> m_closedSubscriptions;
  GW::CComboPushButton* m_compactModeButton = nullptr;  ///< mode 1
  QTimer* m_refreshTimer = nullptr;
  /// False while createUi runs: controls report nothing to a panel that is half built.
  bool m_uiReady = false;
  utils::CLifeline<CCompactsPanel> m_lifeline{this};
};

}  // namespace VN
