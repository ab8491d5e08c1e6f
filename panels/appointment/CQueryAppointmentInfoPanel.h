#pragma once

#include "bson/BSONObj.h"
#include "panels_api.h"
#include "rdservice/meta_types.h"
#include "vn/ITradeDockableWidget.h"

#include <cstdint>
#include <vector>

namespace GW {
class CAutoExpandToolBar;
class CComboBox;
class CLineEdit;
class CSimpleTextWidget;
class CSmallNoNormalButton;
class CSoftCalendarLineEdit;
}  // namespace GW

namespace VN {

class CQueryAppointmentInfoTable;
class CStockCodeLineEdit;

/// The dockable panel that queries the compacts of a credit account that are open for renewal by appointment, and
/// applies for the renewal of those that are ticked. GUI thread.
class PANELS_API CQueryAppointmentInfoPanel : public ITradeDockableWidget {
  Q_OBJECT
 public:
  /// Queries at once: the first account, every security, the year up to today.
  CQueryAppointmentInfoPanel(int panelId, QWidget* parent);
  ~CQueryAppointmentInfoPanel() override;

  /// Account key, security and default renewal days, joined by "|". The table's layout is the user configuration's.
  void setParam(const QString& param) override;
  QString param() const override;
  /// The account may be new: the combo box is filled again.
  void refreshAccounts() override;
  bool handleEvent(int type, int p1, int p2, QString text, void* data) override;

  /// Fills the combo box with the user's credit accounts.
  void initAccountCombobox();
  /// Sends a query; a date that is missing or wrong is told by a tip, and nothing is sent.
  void doQueryAppointmentInfo();
  /// Asks the user, then sends an application for each row that is ticked.
  void doRenewAppointmentInfo();

 public Q_SLOTS:
  void onQueryAppointmentInfo(const rdservice::CQueryAppointmentInfoReqPtr& request, const utils::RDError& error,
                              const rdservice::IDataPtr& data, bson::bo extra);
  void onRenewAppointmentInfo(const rdservice::CCreditCompactRenewalApplyPtr& apply, const utils::RDError& error,
                              const std::vector<rdservice::IDataPtr>& datas, bson::bo extra);

 private:
  void createUi();
  void addDateEdits();
  void addRenewal();
  bool hasValidDates() const;

  GW::CAutoExpandToolBar* m_toolbar = nullptr;
  GW::CComboBox* m_accountCombo = nullptr;
  GW::CSmallNoNormalButton* m_refreshButton = nullptr;
  GW::CSimpleTextWidget* m_renewLink = nullptr;
  CQueryAppointmentInfoTable* m_table = nullptr;
  CStockCodeLineEdit* m_stockEdit = nullptr;
  GW::CSoftCalendarLineEdit* m_startEdit = nullptr;
  GW::CSoftCalendarLineEdit* m_endEdit = nullptr;
  GW::CLineEdit* m_daysEdit = nullptr;
  /// Queries overlap: only the latest one's answer is shown.
  rdservice::CQueryAppointmentInfoReqPtr m_latestRequest;
};

}  // namespace VN
