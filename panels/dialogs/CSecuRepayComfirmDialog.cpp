#include "dialogs/CSecuRepayComfirmDialog.h"

#include "gw/COddEvenRowTable.h"
#include "gw/CUiResource.h"
#include "gw/containers.h"
#include "gw/controls.h"
#include "gw/widget_events.h"
#include "rdservice/TypeManager.h"

#include <algorithm>
#include <vector>

namespace VN {

namespace {

constexpr const char* TEXT_OK = "确定";
constexpr const char* TEXT_CANCEL = "取消";

enum EButton : int { ButtonOk = 0, ButtonCancel = 1 };

enum EColumn : int {
  ColumnAccount,
  ColumnMarket,
  ColumnCode,
  ColumnName,
  ColumnSource,
  ColumnOperation,
  ColumnVolume,
  ColumnLiability,
  ColumnHolding
};

struct CColumnRow {
  const char* title;
  bool isVolume;  ///< of shares: bold and summed
  bool isEditable;
};

constexpr CColumnRow COLUMNS[] = {
    {"账号", false, false},     {"市场", false, false},        {"代码", false, false},
    {"股票名称", false, false}, {"头寸来源", false, false},    {"交易类型", false, false},
    {"分配量", true, true},     {"未还合约数量", true, false}, {"当前拥股", true, false},
};

constexpr const char* SOURCE_TYPE = "rdservice::EKVCompactBrushSource";

constexpr int COLUMN_WIDTH = 84;
constexpr int DIALOG_WIDTH = 900;
constexpr QSize LEAST_INNER_SIZE(460, 150);
constexpr int LEAST_ENTRIES = 10;  ///< the dialog is as high as so many need
constexpr int MOST_ENTRIES = 25;
constexpr QSize BUTTON_SIZE(80, 26);
constexpr int BUTTON_SPACING = 15;
constexpr int ROOM_ABOUT_BUTTONS = 15;

std::vector<GW::CPlainColumn> tableColumns() {
  std::vector<GW::CPlainColumn> columns;
  for (const CColumnRow& row : COLUMNS)
    columns.push_back({QString::fromUtf8(row.title), COLUMN_WIDTH, row.isVolume, row.isEditable, true, row.isVolume});
  return columns;
}

}  // namespace

CSecuRepayComfirmDialog::CSecuRepayComfirmDialog(const QString& title, QWidget* parent)
    : CCommonDialog(parent), m_table(new GW::COddEvenRowTable(this)) {
  setTitle(title);
  setWindowFlags((windowFlags() & ~(Qt::WindowCloseButtonHint | Qt::WindowContextHelpButtonHint)) |
                 Qt::WindowStaysOnTopHint);
  setAttribute(Qt::WA_DeleteOnClose);

  m_table->setColumns(tableColumns());
  auto* const inner = new GW::CWidgetList(Qt::Vertical, this);
  inner->setMargins(0, 0, 0, 0);
  inner->setSpacing(0);
  inner->addStretchWidget(m_table);
  inner->addFixedWidget(makeButtonRow(inner));
  setInnerWidget(inner);

  const int margins = 2 * frameMargin();
  setMinimumSize(LEAST_INNER_SIZE.width() + margins, LEAST_INNER_SIZE.height() + titleHeight() + margins);
}

CSecuRepayComfirmDialog::~CSecuRepayComfirmDialog() = default;

QWidget* CSecuRepayComfirmDialog::makeButtonRow(QWidget* parent) {
  auto* const row = new GW::CWidgetList(Qt::Horizontal, parent);
  row->setMargins(15, 10, 15, 5);
  row->setSpacing(BUTTON_SPACING);
  row->setFixedHeight(GW::CUiResource::getSize(QStringLiteral("vn_siz_setting_inner_bottom_btn_height")) +
                      ROOM_ABOUT_BUTTONS);
  m_ok = new GW::CMediumNormalButton(ButtonOk, QString::fromUtf8(TEXT_OK), row);
  m_ok->setDefault(true);
  m_ok->setAutoDefault(true);
  m_cancel = new GW::CMediumNormalButton(ButtonCancel, QString::fromUtf8(TEXT_CANCEL), row);
  row->addStretchWidget(new QWidget(row));
  for (GW::CMediumNormalButton* button : {m_ok, m_cancel}) {
    button->setFixedSize(BUTTON_SIZE);
    button->setFocusPolicy(Qt::NoFocus);
    row->addFixedWidget(button);
  }
  return row;
}

void CSecuRepayComfirmDialog::setData(std::list<CSecuRepayEntry>& entries, const rdservice::CAccountDataPtr&) {
  m_entries.clear();
  m_table->clear();
  const int count = static_cast<int>(entries.size());
  m_table->setRowCount(count);
  const int lines = std::clamp(count, LEAST_ENTRIES, MOST_ENTRIES) + 2;  // with header and statistics
  resize(DIALOG_WIDTH, m_table->itemHeight() * lines * 4 / 3 + 30);
  int row = 0;
  for (CSecuRepayEntry& entry : entries) {
    showEntry(row, entry);
    m_entries[row++] = &entry;
  }
}

void CSecuRepayComfirmDialog::showEntry(int row, const CSecuRepayEntry& entry) {
  const auto show = [this, row](int column, const std::string& text) {
    m_table->setCell(row, column, QString::fromStdString(text));
  };
  show(ColumnAccount, entry.account->accountId);
  show(ColumnMarket, entry.position->exchangeId);
  show(ColumnCode, entry.position->code);
  show(ColumnName, entry.position->name);
  show(ColumnSource,
       rdservice::TypeManager::getEnumItemName(SOURCE_TYPE, entry.source, rdservice::TraderTypeStockCredit));
  show(ColumnOperation, rdservice::operationValueToString(rdservice::OperationDirectReturn));
  m_table->setCell(row, ColumnVolume, qint64{entry.volume});
  m_table->setCell(row, ColumnLiability, entry.liability);
  m_table->setCell(row, ColumnHolding, qint64{entry.position->currentVolume});
}

void CSecuRepayComfirmDialog::setVolume(int row, const QString& text) {
  const auto found = m_entries.find(row);
  if (found == m_entries.end()) return;
  found->second->volume = text.toInt();
  m_table->setCell(row, ColumnVolume, qint64{found->second->volume});  // what counts, not what was typed
}

bool CSecuRepayComfirmDialog::handleEvent(int type, int p1, int p2, QString text, void* eventData) {
  switch (type) {
    case GW::EventButtonClicked:
      if (p1 == ButtonOk) {
        m_table->commitEditing();  // a click on a button without focus leaves the editor open
        accept();
      } else if (p1 == ButtonCancel) {
        reject();
      }
      return true;
    case GW::EventDialogCellEdited: {
      const auto* const cell = static_cast<const GW::CPlainCell*>(eventData);
      if (cell->column == ColumnVolume) setVolume(cell->row, text);
      return true;
    }
    default: return CBaseDialog::handleEvent(type, p1, p2, text, eventData);
  }
}

}  // namespace VN
