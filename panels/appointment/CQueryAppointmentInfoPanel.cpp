#include "appointment/CQueryAppointmentInfoPanel.h"

#include "appointment/CQueryAppointRespWrapper.h"
#include "appointment/CQueryAppointmentInfoTable.h"
#include "gw/CMessageBox.h"
#include "gw/CMessageTip.h"
#include "gw/CSimpleTextWidget.h"
#include "gw/containers.h"
#include "gw/controls.h"
#include "gw/line_edits.h"
#include "gw/widget_events.h"
#include "host_api.h"
#include "panel_texts.h"
#include "rdservice/CQueryAppointmentInfoResp.h"
#include "rdservice/StockSMTQueryAppointmentInfoResp.h"
#include "utils/CLogCenter.h"
#include "utils/threads.h"
#include "vn/CExchangeClient.h"
#include "vn/CStockCodeLineEdit.h"
#include "vn/CTradeClient.h"
#include "vn/CUserConfig.h"

#include <QDate>
#include <QPointer>
#include <QStringList>

#include <boost/make_shared.hpp>

#include <memory>

namespace VN {

namespace {

using rdservice::StockSMTQueryAppointmentInfoResp;
using rdservice::StockSMTQueryAppointmentInfoRespPtr;

constexpr QChar PARAM_SEPARATOR = u'|';
constexpr int TIP_SECONDS = 2;
constexpr int TIP_WIDTH = 300;
constexpr int LINK_WIDTH_LIMIT = 100000;
/// The line that the log names for answers to applications.
constexpr int RENEWAL_LOG_LINE = 423;

enum EWidgetId : int {
  IdRefresh = 0,
  IdRenewal = 1,
  IdAccount = 2,
  IdStock = 4,
  IdStartDate = 5,
  IdEndDate = 6,
  IdDays = 7,
};

enum EParamField : int { ParamAccount = 0, ParamStock = 1, ParamDays = 2 };

QString typeKeyText() { return QStringLiteral("crdaq"); }

/// The date as eight digits: year, month, day.
int digitsOf(const QDate& date) { return (date.year() * 100 + date.month()) * 100 + date.day(); }

/// Beside the edit, or beside `otherwise` where the bar had no room for it.
void showTip(QWidget* edit, QWidget* otherwise, const QString& text) {
  GW::CMessageTip::showTip(edit->isVisible() ? edit : otherwise, GW::CMessageTip::Below, text, GW::CMessageTip::Warning,
                           TIP_SECONDS, TIP_WIDTH);
}

}  // namespace

CQueryAppointmentInfoPanel::CQueryAppointmentInfoPanel(int panelId, QWidget* parent)
    : ITradeDockableWidget(typeKeyText(), panelId, getDockWidgetInfo(typeKeyText()), parent) {
  if (host::contractVersion() != host::CONTRACT_VERSION) {
    constexpr utils::CLogSite SITE{"CQueryAppointmentInfoPanel.cpp",
                                   "VN::CQueryAppointmentInfoPanel::CQueryAppointmentInfoPanel(int, QWidget*)"};
    utils::logError(SITE, "[CQueryAppointmentInfoPanel] contract version {0} of the client, {1} of the panel",
                    host::contractVersion(), host::CONTRACT_VERSION);
    return;
  }
  rdservice::registerMetaTypes();
  createUi();
  doQueryAppointmentInfo();
}

CQueryAppointmentInfoPanel::~CQueryAppointmentInfoPanel() = default;

void CQueryAppointmentInfoPanel::createUi() {
  auto* list = new GW::CWidgetList(Qt::Vertical, this);
  list->setMargins(0, 0, 0, 0);
  list->setSpacing(0);
  m_toolbar = new GW::CAutoExpandToolBar(list);
  m_toolbar->setBackgroundImage(QStringLiteral("vn_img_op_hedge_type_bg"));
  m_toolbar->setMargins(2, 8, 2, 8);
  m_refreshButton = new GW::CSmallNoNormalButton(IdRefresh, QStringLiteral("刷新"), m_toolbar);
  m_refreshButton->setFont(GW::CUiResource::getFont(QStringLiteral("fnt_default_normal_fix")));
  m_refreshButton->setFixedWidth(50);
  m_toolbar->addWidget(m_refreshButton);
  m_toolbar->addSeparator();
  m_accountCombo = new GW::CComboBox(IdAccount, m_toolbar);
  m_accountCombo->setFixedWidth(120);
  m_accountCombo->setAccessibleName(QStringLiteral("资金账号"));
  m_toolbar->addWidget(m_accountCombo);
  initAccountCombobox();
  m_stockEdit = new CStockCodeLineEdit(IdStock, m_toolbar);
  m_stockEdit->setFixedSize(140, 20);
  m_stockEdit->setTradeType(rdservice::TraderTypeStockCredit);
  m_stockEdit->setAccessibleName(QStringLiteral("证券代码"));
  m_stockEdit->setPlaceholderText(m_stockEdit->accessibleName());
  m_toolbar->addWidget(m_stockEdit);
  addDateEdits();
  addRenewal();

  m_table = new CQueryAppointmentInfoTable(list);
  m_table->setTradeType(rdservice::TraderTypeStockCredit);
  m_table->setUpColumns();
  list->addFixedWidget(m_toolbar);
  list->addStretchWidget(m_table);
  setInnerWidget(list);
}

void CQueryAppointmentInfoPanel::addDateEdits() {
  struct CDateEdit {
    int id;
    QString label;
    QDate date;
    GW::CSoftCalendarLineEdit*& edit;
  };
  const QDate today = QDate::currentDate();
  for (const CDateEdit& date : {CDateEdit{IdStartDate, QStringLiteral("起始时间"), today.addYears(-1), m_startEdit},
                                {IdEndDate, QStringLiteral("终止时间"), today, m_endEdit}}) {
    m_toolbar->addWidget(new GW::CSimpleTextWidget(date.label, m_toolbar));
    date.edit = new GW::CSoftCalendarLineEdit(date.id, m_toolbar);
    date.edit->setFixedSize(GW::CUiResource::getSize(QStringLiteral("vn_siz_setting_accounts_item_width")),
                            GW::CUiResource::getSize(QStringLiteral("vn_siz_querypanel_toolbar_item_height")));
    date.edit->setMaximumDate(today);
    date.edit->setEditable(true);
    date.edit->setInputMask(QStringLiteral("0000-00-00"));
    date.edit->setDate(date.date);
    date.edit->setAccessibleName(date.label);
    m_toolbar->addWidget(date.edit);
  }
}

void CQueryAppointmentInfoPanel::addRenewal() {
  m_renewLink = new GW::CSimpleTextWidget(IdRenewal, QStringLiteral("选中申请展期"), m_toolbar);
  m_renewLink->setWidthLimit(LINK_WIDTH_LIMIT);
  m_renewLink->setFontKey(QStringLiteral("fnt_default_normal_fix"));
  m_renewLink->setColorKey(QStringLiteral("clr_clickable_simple_text"));
  m_toolbar->addSeparator();
  m_toolbar->addWidget(m_renewLink);
  m_toolbar->addSeparator();
  const QString label = QStringLiteral("默认展期天数");
  m_toolbar->addWidget(new GW::CSimpleTextWidget(label, m_toolbar));
  m_daysEdit = new GW::CLineEdit(IdDays, m_toolbar);
  m_daysEdit->setValidator(new GW::CIntValidator(0, CQueryAppointmentInfoTable::MAX_DAYS, m_daysEdit));
  m_daysEdit->setFixedWidth(40);
  m_daysEdit->setText(QStringLiteral("0"));
  m_daysEdit->setAccessibleName(label);
  m_toolbar->addWidget(m_daysEdit);
}

void CQueryAppointmentInfoPanel::setParam(const QString& param) {
  utils::assertGui();
  if (m_table != nullptr) {
    CTableConfigInfo layout{panelId(), CQueryAppointmentInfoTable::TABLE_ID, QString()};
    if (getUserConfig()->getTableSetting(layout)) m_table->loadConfigStr(layout.config);
  }
  if (m_accountCombo == nullptr) return;
  const QStringList fields = param.split(PARAM_SEPARATOR);
  const int account = fields.at(ParamAccount).isEmpty()
                          ? -1
                          : m_accountCombo->findData(fields.at(ParamAccount), Qt::UserRole, Qt::MatchExactly);
  if (account >= 0) m_accountCombo->setCurrentIndex(account);
  if (fields.size() > ParamStock) m_stockEdit->setStockCode(fields.at(ParamStock), 0);
  if (fields.size() > ParamDays) {
    m_daysEdit->setText(fields.at(ParamDays));
    m_table->setDefaultRenewalDays(fields.at(ParamDays).toInt());
    if (!m_daysEdit->hasAcceptableInput()) m_daysEdit->setText(QString::number(m_table->defaultRenewalDays()));
  }
}

QString CQueryAppointmentInfoPanel::param() const {
  utils::assertGui();
  if (m_table == nullptr) return QString();
  getUserConfig()->saveTableSetting({panelId(), CQueryAppointmentInfoTable::TABLE_ID, m_table->saveConfigStr()});
  return QStringList{m_accountCombo->currentKey(), m_stockEdit->stockCode(), m_daysEdit->text()}.join(PARAM_SEPARATOR);
}

void CQueryAppointmentInfoPanel::refreshAccounts() {
  utils::assertGui();
  initAccountCombobox();
}

bool CQueryAppointmentInfoPanel::handleEvent(int type, int p1, int p2, QString text, void* data) {
  utils::assertGui();
  if (type == GW::EventButtonClicked && p1 == IdRefresh) {
    doQueryAppointmentInfo();
  } else if (type == GW::EventComboChanged && p1 == IdAccount) {
    doQueryAppointmentInfo();
  } else if (type == GW::EventTextClicked && p1 == IdRenewal) {
    doRenewAppointmentInfo();
  } else if (type == GW::EventHeaderCheckBox) {
    if (m_table != nullptr && m_table->isVisible()) m_table->checkAll(p2 != 0);
  } else if (type == GW::EventLineEditChanged && p1 == IdDays && m_table != nullptr) {
    m_table->setDefaultRenewalDays(text.toInt(nullptr, 10));
  } else {
    return GW::CBaseWidget::handleEvent(type, p1, p2, text, data);
  }
  return true;
}

void CQueryAppointmentInfoPanel::initAccountCombobox() {
  utils::assertGui();
  if (m_accountCombo == nullptr) return;
  const QString remembered = m_accountCombo->currentKey();
  m_accountCombo->beginRefill();
  m_accountCombo->clear();
  const QList<CAccountPtr> accounts = getUserConfig()->getAccountDatas();
  for (const CAccountPtr& account : accounts)
    if (account && isBrokerTypeMatchTradeType(account->brokerType, rdservice::TraderTypeStockCredit, false))
      m_accountCombo->addItem(QString::fromStdString(rdservice::accountDisplayID(*account)),
                              QString::fromStdString(account->getKey()));
  const int index = m_accountCombo->findData(remembered, Qt::UserRole, Qt::MatchExactly);
  if (!remembered.isEmpty() && index >= 0) m_accountCombo->setCurrentIndex(index);
  m_accountCombo->endRefill();
}

bool CQueryAppointmentInfoPanel::hasValidDates() const {
  if (m_startEdit->text().isEmpty())
    showTip(m_startEdit, m_toolbar, QStringLiteral("请选择起始日期!"));
  else if (m_endEdit->text().isEmpty())
    showTip(m_endEdit, m_toolbar, QStringLiteral("请选择终止日期!"));
  else if (m_startEdit->date() > m_endEdit->date())
    showTip(m_endEdit, m_toolbar, QStringLiteral("终止日期不能小于起始日期!"));
  else
    return true;
  return false;
}

void CQueryAppointmentInfoPanel::doQueryAppointmentInfo() {
  utils::assertGui();
  if (m_table == nullptr) return;  // the combo box is being filled for the first time
  const auto request = boost::make_shared<rdservice::CQueryAppointmentInfoReq>();
  request->accountInfo = getUserConfig()->getAccountData(m_accountCombo->currentKey());
  const QString stock = m_stockEdit->stockCode();
  if (const rdservice::CInstrumentInfoPtr instrument =
          stock.isEmpty() ? nullptr : CExchangeClient::getInstrument(stock)) {
    request->exchangeId = instrument->exchangeId.str();
    request->code = instrument->code.str();
  }
  // The panel may have been open since yesterday.
  for (GW::CSoftCalendarLineEdit* const edit : {m_startEdit, m_endEdit}) edit->setMaximumDate(QDate::currentDate());
  if (!hasValidDates()) return;
  request->startDate = digitsOf(m_startEdit->date());
  request->endDate = digitsOf(m_endEdit->date());
  m_table->clear();
  m_table->updateTable();
  m_table->updateHeaderCheckBox();
  m_latestRequest = request;
  const auto wrapper = std::make_shared<CQueryAppointRespWrapper>();
  connect(wrapper.get(), &CQueryAppointRespWrapper::sigResp, this, &CQueryAppointmentInfoPanel::onQueryAppointmentInfo,
          Qt::QueuedConnection);
  CTradeClient::instance()->queryAppointmentInfo(
      request,
      [wrapper, request](const utils::RDError& error, const rdservice::IDataPtr& data, const bson::BSONObj& extra) {
        Q_EMIT wrapper->sigResp(request, error, data, extra);
      });
}

void CQueryAppointmentInfoPanel::onQueryAppointmentInfo(const rdservice::CQueryAppointmentInfoReqPtr& request,
                                                        const utils::RDError&, const rdservice::IDataPtr& data,
                                                        bson::bo) {
  utils::assertGui();
  if (request != m_latestRequest) return;
  const auto* const answer = dynamic_cast<const rdservice::CQueryAppointmentInfoResp*>(data.get());
  if (answer == nullptr || answer->resultFlag == 0) return;
  std::vector<rdservice::IDataPtr> records;
  for (const rdservice::IDataPtr& element : answer->records) {
    const auto* const compact = dynamic_cast<const StockSMTQueryAppointmentInfoResp*>(element.get());
    if (compact == nullptr) continue;
    if (compact->accountInfo || !request || !request->accountInfo) {
      records.push_back(element);
      continue;
    }
    const auto owned = boost::make_shared<StockSMTQueryAppointmentInfoResp>(*compact);
    owned->accountId = request->accountInfo->accountId;
    owned->accountInfo = request->accountInfo;
    records.push_back(owned);
  }
  m_table->markNewRows(records);
  m_table->updateDatas(records, true);
  m_table->updateHeaderCheckBox();
}

void CQueryAppointmentInfoPanel::doRenewAppointmentInfo() {
  utils::assertGui();
  if (m_table == nullptr) return;
  const std::vector<rdservice::IDataPtr> checked = m_table->checkedRecords();
  if (checked.empty()) {
    GW::CMessageBox::warning(this, warningTitle(), QStringLiteral("请选择您要展期的合约!"));
    return;
  }
  const QPointer<CQueryAppointmentInfoPanel> panel = this;
  const int answer = GW::CMessageBox::information(this, hintTitle(), renewalQuestion(static_cast<int>(checked.size())),
                                                  QMessageBox::Yes | QMessageBox::No);
  if (!panel || answer != QMessageBox::Yes) return;
  for (const rdservice::IDataPtr& record : checked) {
    const auto compact = boost::dynamic_pointer_cast<StockSMTQueryAppointmentInfoResp>(record);
    if (!compact || !m_table->getDataByKey(compact->getKey())) continue;  // gone while the user was asked
    const auto apply = boost::make_shared<rdservice::CCreditCompactRenewalApply>();
    apply->accountInfo = compact->accountInfo;
    apply->compactNumber = compact->fieldA;
    apply->exchangeId = compact->exchangeId.str();
    apply->code = compact->code.str();
    apply->openDate = compact->fieldB;
    apply->expiryDate = compact->expiryDate;
    apply->flag = rdservice::CCreditCompactRenewalApply::ExpiryAdded;
    apply->renewalDays = m_table->renewalDays(compact->getKey());
    const auto wrapper = std::make_shared<CQueryAppointRespWrapper>();
    connect(wrapper.get(), &CQueryAppointRespWrapper::sigResps, this,
            &CQueryAppointmentInfoPanel::onRenewAppointmentInfo, Qt::QueuedConnection);
    CTradeClient::instance()->applyCompactRenewal(
        apply, [wrapper, apply](const utils::RDError& error, const std::vector<rdservice::IDataPtr>& datas,
                                const bson::BSONObj& extra) { Q_EMIT wrapper->sigResps(apply, error, datas, extra); });
  }
}

void CQueryAppointmentInfoPanel::onRenewAppointmentInfo(const rdservice::CCreditCompactRenewalApplyPtr& apply,
                                                        const utils::RDError& error,
                                                        const std::vector<rdservice::IDataPtr>& datas, bson::bo) {
  utils::assertGui();
  constexpr utils::CLogSite SITE{"CQueryAppointmentInfoPanel",
                                 "void VN::CQueryAppointmentInfoPanel::onRenewAppointmentInfo(const "
                                 "rdservice::CCreditCompactRenewalApplyPtr&, const utils::RDError&, const "
                                 "std::vector<rdservice::IDataPtr>&, bson::bo)",
                                 RENEWAL_LOG_LINE};
  utils::logError(SITE, "[{0}] [VN::CQueryAppointmentInfoPanel::onRenewAppointmentInfo] data size : {1}, error: {2}",
                  panelId(), datas.size(), error.errorMsg());
  showRenewalResult(apply, error, datas);
}

}  // namespace VN
