#include "orderpanel/COrderForm.h"

#include "orderpanel/order_panel_ids.h"
#include "orderpanel/security_lookup.h"

#include "gw/controls.h"
#include "rdservice/CPriceData.h"
#include "rdservice/TypeManager.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr int MARGIN = 8;
constexpr int GAP = 6;
constexpr int MOST_FIELDS = 8;
constexpr double MOST_PRICE = 999999.999;
constexpr double MOST_VOLUME = 1e15;
constexpr double LOT = 100;  ///< shares
constexpr double CENT = 0.01;
constexpr const char* WIDTH_SAMPLE = "00000000000000000";

constexpr int OPERATIONS[] = {rdservice::OperationBuyToReturn,         rdservice::OperationDirectReturn,
                              rdservice::OperationSellToRepay,         rdservice::OperationDirectRepay,
                              rdservice::OperationSpecialDirectReturn, rdservice::OperationSpecialBuyToReturn};

struct CRepayName {
  rdservice::ERepayType type;
  const char* name;
};

constexpr CRepayName REPAY_TYPES[] = {{rdservice::RepayTypeFinancing, "融资负债"},
                                      {rdservice::RepayTypeFinancingInterest, "融资利息"},
                                      {rdservice::RepayTypeLendingFee, "融券费用"},
                                      {rdservice::RepayTypeLendingInterest, "融券利息"}};

// Texts for users.
constexpr const char* ACCOUNT = "资金账号";
constexpr const char* OPERATION = "业务类型";
constexpr const char* REPAY_TYPE = "还款类型";
constexpr const char* SECURITY = "证券代码";
constexpr const char* NAME = "证券名称";
constexpr const char* PRICE = "委托价格";
constexpr const char* VOLUME = "委托数量";
constexpr const char* COMPACT = "合约编号";
constexpr const char* EQUITY = "权益补偿";
constexpr const char* SELECT_COLUMN = "选择列";
constexpr const char* SELECT_COLUMN_HINT = "在合约表中显示“选择”列";
constexpr const char* PLACE = "下单";
constexpr const char* PLACE_SEVERAL = "下单（%1 个账号）";
constexpr const char* LAST_PRICE = "最新价";
constexpr const char* SECURITY_HINT = "代码，或交易所和代码";
constexpr const char* COMPACT_HINT = "双击合约选择";

QString utf8(const char* text) { return QString::fromUtf8(text); }

QLocale locale() { return QLocale(QLocale::Chinese); }

void setKey(GW::CComboBox& combo, int key) {
  const int index = combo.findData(QString::number(key));
  if (index >= 0) combo.setCurrentIndex(index);
}

QDoubleSpinBox* makeSpinBox(QWidget* parent, double most, int decimals, double step) {
  auto* box = new QDoubleSpinBox(parent);
  box->setLocale(locale());
  box->setRange(0, most);
  box->setDecimals(decimals);
  box->setSingleStep(step);
  box->setAlignment(Qt::AlignRight);
  box->setGroupSeparatorShown(true);
  return box;
}

}  // namespace

COrderForm::COrderForm(QWidget* parent) : QWidget(parent), m_grid(new QGridLayout(this)) {
  m_grid->setContentsMargins(MARGIN, MARGIN, MARGIN, MARGIN);
  m_grid->setHorizontalSpacing(GAP);
  m_grid->setVerticalSpacing(GAP);
  m_accounts = makeCombo(IdOrderAccount);
  m_operations = makeCombo(IdOrderOperation);
  for (const int operation : OPERATIONS)
    m_operations->addItem(QString::fromStdString(rdservice::operationValueToString(operation)),
                          QString::number(operation));
  m_repayTypes = makeCombo(IdOrderRepayType);
  for (const CRepayName& repay : REPAY_TYPES) m_repayTypes->addItem(utf8(repay.name), QString::number(repay.type));
  m_security = new QLineEdit(this);
  m_security->setPlaceholderText(utf8(SECURITY_HINT));
  m_name = new QLabel(this);
  m_name->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);  // the fields keep their widths
  m_price = makeSpinBox(this, MOST_PRICE, 2, CENT);
  m_price->setSpecialValueText(utf8(LAST_PRICE));
  m_volume = makeSpinBox(this, MOST_VOLUME, 0, LOT);
  m_compact = new QLineEdit(this);
  m_compact->setReadOnly(true);
  m_compact->setPlaceholderText(utf8(COMPACT_HINT));
  m_equity = new QLabel(this);
  const int leastWidth = fontMetrics().horizontalAdvance(utf8(WIDTH_SAMPLE));
  for (QLineEdit* line : {m_security, m_compact}) line->setMinimumWidth(leastWidth);
  m_selectColumn = new QCheckBox(utf8(SELECT_COLUMN), this);
  m_selectColumn->setToolTip(utf8(SELECT_COLUMN_HINT));
  m_selectColumn->setAccessibleName(utf8(SELECT_COLUMN));
  m_selectColumn->setChecked(true);
  m_place = new GW::CMediumNormalButton(IdPlaceOrder, utf8(PLACE), this);
  m_place->setAccessibleName(utf8(PLACE));
  m_place->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  addField(ACCOUNT, m_accounts);
  addField(OPERATION, m_operations);
  addField(REPAY_TYPE, m_repayTypes);
  addField(SECURITY, m_security);
  addField(NAME, m_name);
  addField(PRICE, m_price);
  addField(VOLUME, m_volume);
  addField(COMPACT, m_compact);
  addField(EQUITY, m_equity);
  m_fields.push_back({nullptr, m_selectColumn});
  m_fields.push_back({nullptr, m_place});
  connect(m_security, &QLineEdit::textChanged, this, [this] { followSecurity(); });
  setEquityCompensation(0);
  followOperation();
}

COrderForm::~COrderForm() = default;

GW::CComboBox* COrderForm::makeCombo(int id) {
  constexpr int LEAST_TEXT = 10;
  auto* combo = new GW::CComboBox(id, this);
  combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  combo->setMinimumContentsLength(LEAST_TEXT);
  combo->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  return combo;
}

void COrderForm::addField(const char* name, QWidget* field) {
  auto* label = new QLabel(utf8(name), this);
  label->setBuddy(field);
  field->setAccessibleName(utf8(name));
  m_fields.push_back({label, field});
}

void COrderForm::setFieldsPerRow(int fields) {
  m_fieldsPerRow = std::clamp(fields, 1, MOST_FIELDS);
  arrange();
}

/// Fields that are hidden leave no gap.
void COrderForm::arrange() {
  while (QLayoutItem* item = m_grid->takeAt(0)) delete item;
  for (int column = 0; column < 2 * MOST_FIELDS; ++column)
    m_grid->setColumnStretch(column, column % 2 == 1 && column < 2 * m_fieldsPerRow ? 1 : 0);
  for (int row = 0; row < m_grid->rowCount(); ++row) m_grid->setRowStretch(row, 0);
  int place = 0;
  for (const CField& field : m_fields) {
    if (field.widget->isHidden() && field.widget->testAttribute(Qt::WA_WState_ExplicitShowHide)) continue;
    const int row = place / m_fieldsPerRow;
    const int column = place % m_fieldsPerRow * 2;
    if (field.label != nullptr) m_grid->addWidget(field.label, row, column);
    m_grid->addWidget(field.widget, row, column + 1);
    ++place;
  }
  m_grid->setRowStretch((place + m_fieldsPerRow - 1) / m_fieldsPerRow, 1);
}

rdservice::EOperationType COrderForm::operation() const {
  return static_cast<rdservice::EOperationType>(m_operations->currentKey().toInt());
}

void COrderForm::setOperation(int operation) { setKey(*m_operations, operation); }

rdservice::ERepayType COrderForm::repayType() const {
  return static_cast<rdservice::ERepayType>(m_repayTypes->currentKey().toInt());
}

void COrderForm::setRepayType(int repayType) { setKey(*m_repayTypes, repayType); }

void COrderForm::followOperation() {
  const auto repay = std::find_if(m_fields.begin(), m_fields.end(),
                                  [this](const CField& field) { return field.widget == m_repayTypes; });
  const bool isRepaid = operation() == rdservice::OperationDirectRepay;
  repay->label->setVisible(isRepaid);
  repay->widget->setVisible(isRepaid);
  arrange();
}

QString COrderForm::securityText() const { return m_security->text(); }

void COrderForm::onSecurityEdited(std::function<void()> edited) {
  connect(m_security, &QLineEdit::textEdited, this, [this, edited = std::move(edited)] {
    m_compact->clear();  // it was for the security that was named before
    edited();
  });
}

double COrderForm::price() const { return m_price->value(); }

std::int64_t COrderForm::volume() const { return std::llround(m_volume->value()); }

void COrderForm::setVolume(std::int64_t shares) { m_volume->setValue(static_cast<double>(shares)); }

void COrderForm::followSecurity() {
  const rdservice::CInstrumentInfoPtr before = m_instrument;
  m_instrument = findSecurity(m_security->text()).instrument;
  if (m_instrument) {
    m_price->setDecimals(m_instrument->priceTick < CENT ? 3 : 2);
    m_price->setSingleStep(m_instrument->priceTick);
  }
  // A price is meant for the security that was named when it was typed.
  if (before && m_instrument && before->getKey() != m_instrument->getKey()) m_price->setValue(0);
  updatePrice();
}

void COrderForm::fill(const rdservice::CStkUnClosedCompacts& compact) {
  m_security->setText(::securityText(compact.exchangeId.str(), compact.code.str()));
  switch (operation()) {
    case rdservice::OperationDirectRepay: break;  // of money
    case rdservice::OperationSellToRepay: setVolume(compact.financingVolume); break;
    default: setVolume(compact.lendingVolume); break;
  }
  setCompactNumber(QString::fromStdString(compact.fieldA));
}

void COrderForm::setCompactNumber(const QString& number) { m_compact->setText(number); }

QString COrderForm::compactNumber() const { return m_compact->text(); }

void COrderForm::updatePrice() {
  QString text;
  if (m_instrument) {
    text = QString::fromStdString(m_instrument->name.str());
    const double price = rdservice::CPriceDataHelper::getLastPrice(
        rdservice::PriceSourceLast, m_instrument->exchangeId.str(), m_instrument->code.str());
    if (price > 0)
      text += QStringLiteral("  ") + utf8(LAST_PRICE) + QStringLiteral(" %1").arg(price, 0, 'f', m_price->decimals());
  }
  m_name->setText(text);
  m_name->setToolTip(text);
}

void COrderForm::setEquityCompensation(double amount) {
  m_equity->setText(locale().toString(amount, 'f', 2) + QStringLiteral(" 元"));
}

void COrderForm::setAccountCount(int count) {
  m_place->setText(count > 1 ? utf8(PLACE_SEVERAL).arg(count) : utf8(PLACE));
}

void COrderForm::focusSecurity() { m_security->setFocus(); }

void COrderForm::focusVolume() {
  m_volume->setFocus();
  m_volume->selectAll();
}
