// What the panel is made of, in both layouts.

#include "compacts/CCompactsPanel.h"
#include "compacts/panel_ids.h"
#include "compacts/priority/priority_rights.h"
#include "compacts/tables/CCompactsChangeTable.h"
#include "compacts/tables/CCompactsPageTable.h"
#include "compacts/tables/CCompactsStaticsTable.h"
#include "compacts/tables/CCompactsTable.h"
#include "compacts/tables/compact_fields.h"
#include "gw/CComboPushButton.h"
#include "gw/CParamAction.h"
#include "gw/CSimpleTextWidget.h"
#include "gw/containers.h"
#include "gw/controls.h"
#include "luawrapper/LuaModuleCtrl.h"
#include "rdservice/ConfigCollector.h"
#include "vn/CCountDownButton.h"

#include <QEvent>
#include <QMenu>
#include <QResizeEvent>

#include <type_traits>

namespace VN {

namespace {

constexpr const char* CHANGE_DETAIL_MODULE = "mdl_order_credit_compact_change_detail";
constexpr const char* RENEWAL_MODULE = "mdl_order_compact_renewal_apply";

bool needsNothing() { return true; }
bool isModuleAllowed(const char* module) {
  return luawrapper::LuaModuleCtrl::instance()->checkModule(luawrapper::LuaModuleCtrl::Order, module);
}
bool mayChangeDetails() { return isModuleAllowed(CHANGE_DETAIL_MODULE); }

struct CViewButton {
  int id;
  const char* text;
  bool (*isAllowed)();
};

// In the order of the toolbar.
constexpr CViewButton VIEW_BUTTONS[] = {
    {ViewUnclosed, "未了结合约", &needsNothing},
    {ViewClosed, "已了结合约", &needsNothing},
    {ViewStatistics, "负债统计", &needsNothing},
    {ViewChanges, "负债变动明细", &mayChangeDetails},
    {ViewPriority, "负债偿还优先级设置", &hasPrioritySettingAuth},
};

struct CTextButton {
  int id;
  const char* text;
};

constexpr CTextButton PRIORITY_BUTTONS[] = {
    {IdSavePriority, "保存优先级调整"}, {IdOrderPriority, "按顺序设置优先级"}, {IdClearPriority, "清空优先级"},
    {IdImportPriority, "导入优先级"},   {IdExportPriority, "导出优先级"},
};

struct CSide {
  const char* text;
  int area;  ///< as EventPanelPosition carries it
};

constexpr CSide SIDES[] = {{"上", 32}, {"下", 64}, {"左", 1}, {"右", 2}};

QFont buttonFont() { return GW::CUiResource::getFont(QStringLiteral("fnt_default_normal_fix")); }
QString refreshText() { return QStringLiteral("刷新"); }

}  // namespace

void CCompactsPanel::createUi() {
  if (m_mode == ModeIndependent)
    createIndependentUi();
  else
    createOrderPanelUi();
}

void CCompactsPanel::createIndependentUi() {
  auto* list = new GW::CWidgetList(Qt::Vertical, this);
  list->setMargins(0, 0, 0, 0);
  list->setSpacing(0);
  m_toolbar = new GW::CAutoExpandToolBar(list);
  m_toolbar->setBackgroundImage(QStringLiteral("vn_img_op_hedge_type_bg"));
  m_radioGroup = new GW::CRadioButtonGroup(m_toolbar);
  m_refreshButton = new CCountDownButton(IdRefreshButton, refreshText(), m_toolbar);
  m_refreshButton->setFont(buttonFont());
  m_toolbar->addWidget(m_refreshButton);
  m_toolbar->addSeparator();
  m_accountCombo = new GW::CComboBox(IdAccountCombo, m_toolbar);
  m_accountCombo->setAccessibleName(QStringLiteral("资金账号"));
  m_toolbar->addWidget(m_accountCombo);
  m_toolbar->addSeparator();
  initAccountCombobox();

  addRadioButtons();
  addPriorityButtons();
  addRenewalLink();
  m_toolbar->addWidget(m_radioGroup);
  for (GW::CSmallNoNormalButton* button : qAsConst(m_priorityButtons)) {
    m_toolbar->addWidget(button);
    m_toolbar->setItemVisible(button, false);
  }
  list->addFixedWidget(m_toolbar);

  const std::string account = m_accountCombo->currentKey().toStdString();
  m_unclosedTable = createTable(TableUnclosedCompacts, list);
  m_unclosedTable->setTradeType(rdservice::TraderTypeStockCredit);
  m_unclosedTable->setAccount(account, false, false);
  list->addStretchWidget(m_unclosedTable);
  m_closedTable = createTable(TableClosedCompacts, list);
  m_closedTable->setAccount(account, false, false);
  m_closedTable->hide();
  list->addStretchWidget(m_closedTable);
  m_staticsTable = new CCompactsStaticsTable(list);
  m_staticsTable->setAccount(account, false, false);
  m_staticsTable->hide();
  connect(m_staticsTable, &CCompactsStaticsTable::sigQueryData, this, &CCompactsPanel::slotQueryData);
  list->addStretchWidget(m_staticsTable);
  if (mayChangeDetails()) {
    m_changeTable = new CCompactsChangeTable(list);
    m_changeTable->setAccount(account, false, false);
    m_changeTable->hide();
    connect(m_changeTable, &CCompactsChangeTable::sigQueryData, this, &CCompactsPanel::slotQueryData);
    list->addStretchWidget(m_changeTable);
  }

  setInnerWidget(list);
  m_radioGroup->setChecked(ViewUnclosed);
  handleButtonClicked(ViewUnclosed);
}

void CCompactsPanel::addRadioButtons() {
  for (const CViewButton& view : VIEW_BUTTONS)
    if (view.isAllowed()) m_radioGroup->addButton(view.id, QString::fromUtf8(view.text));
}

void CCompactsPanel::addPriorityButtons() {
  if (!hasPrioritySettingAuth()) return;
  for (const CTextButton& button : PRIORITY_BUTTONS) {
    m_priorityButtons.push_back(new GW::CSmallNoNormalButton(button.id, QString::fromUtf8(button.text), m_toolbar));
    m_priorityButtons.back()->setFont(buttonFont());
  }
}

void CCompactsPanel::addRenewalLink() {
  if (!isModuleAllowed(RENEWAL_MODULE)) return;
  m_renewLink = new GW::CSimpleTextWidget(IdRenewalLink, QStringLiteral("选中申请展期"), m_toolbar);
  m_renewLink->setFontKey(QStringLiteral("fnt_default_normal_fix"));
  m_renewLink->setColorKey(QStringLiteral("clr_clickable_simple_text"));
  m_toolbar->addSeparator();
  m_toolbar->addWidget(m_renewLink);
  m_toolbar->addSeparator();
}

void CCompactsPanel::createOrderPanelUi() {
  m_toolbar = new GW::CAutoExpandToolBar(this);
  m_toolbar->setShowBorder(false);
  m_compactModeButton = new GW::CComboPushButton(IdCompactMode, m_toolbar);
  m_compactModeButton->setNineGridImage(QStringLiteral("img_combobtn_small_normal_1"));
  m_compactModeButton->setTextColors(QStringLiteral("clr_btn_s_normal_0"), QStringLiteral("clr_btn_s_normal_1"),
                                     QStringLiteral("clr_btn_s_normal_2"), QStringLiteral("clr_btn_s_normal_3"));
  m_compactModeButton->addItem(QStringLiteral("负债信息"));
  m_compactModeButton->addItem(QStringLiteral("多账号模式"));
  m_compactModeButton->setCurrentItem(CompactModeLiabilities);
  m_compactModeButton->installEventFilter(this);
  m_toolbar->addWidget(m_compactModeButton);
  m_refreshButton = new CCountDownButton(IdRefreshButton, refreshText(), m_toolbar);
  m_refreshButton->setFont(buttonFont());
  m_toolbar->addSeparator();
  m_toolbar->addWidget(m_refreshButton);

  m_unclosedTable = createTable(TableUnclosedCompacts, this);
  createPositionMenu();
}

void CCompactsPanel::createPositionMenu() {
  auto* menu = new QMenu(QStringLiteral("面板位置"), m_unclosedTable);
  for (const CSide& side : SIDES) {
    auto* action = new GW::CParamAction(QString::fromUtf8(side.text), side.area, QString(), menu);
    connect(action, QOverload<bool, int, QString>::of(&GW::CParamAction::triggered), this,
            &CCompactsPanel::slotTableLayoutClicked);
    menu->addAction(action);
  }
  m_unclosedTable->addMenuSeparator();
  m_unclosedTable->addMenu(menu);
}

CCompactsBaseTable* CCompactsPanel::createTable(int tableId, QWidget* parent) {
  const auto connected = [this](auto* table) -> CCompactsBaseTable* {
    using CTable = std::remove_pointer_t<decltype(table)>;
    connect(table, &CTable::sigQueryData, this, &CCompactsPanel::slotQueryData);
    if (m_mode != ModeIndependent)
      connect(table, &CTable::sigDoubleClickCompact, this, &CCompactsPanel::sigDoubleClickCompact);
    return table;
  };
  const rdservice::ConfigCollector& broker = *rdservice::ConfigCollector::instance();
  const int type = recordTypeOfTable(tableId);
  if (broker.useSplitPageOfStkCompact() && broker.calcCompactType())
    return connected(new CCompactsPageTable(m_mode, tableId, type, parent));
  return connected(new CCompactsTable(m_mode, tableId, type, parent));
}

void CCompactsPanel::resizeEvent(QResizeEvent* event) {
  ITradeDockableWidget::resizeEvent(event);
  placeInOrderPanel();
}

bool CCompactsPanel::event(QEvent* event) {
  const bool isHandled = ITradeDockableWidget::event(event);
  if (event->type() == QEvent::LayoutRequest) placeInOrderPanel();  // the bar needs another height
  return isHandled;
}

void CCompactsPanel::placeInOrderPanel() {
  if (m_mode != ModeOrderPanel || m_unclosedTable == nullptr) return;
  const int barHeight = m_toolbar->sizeHint().height();
  m_toolbar->setGeometry(0, 0, width(), barHeight);
  m_unclosedTable->setGeometry(0, barHeight, width(), height() - barHeight);
}

}  // namespace VN
