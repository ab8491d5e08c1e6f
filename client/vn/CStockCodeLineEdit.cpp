#include "vn/CStockCodeLineEdit.h"

#include "vn/CExchangeClient.h"
#include "vn/instrument_search.h"

#include "gw/widget_events.h"
#include "rdservice/TraderCenter.h"

#include "utils/threads.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QScrollBar>
#include <QStandardItemModel>

#include <algorithm>

namespace VN {

namespace {

constexpr int MOST_OFFERED = 20;
constexpr int MOST_VISIBLE = 10;

constexpr const char* OFFERED_NAME = "证券列表";

enum ERole : int { RoleCode = Qt::UserRole + 1, RoleKey };

QString lineOf(const rdservice::CInstrumentInfo& instrument) {
  return QString::fromStdString(instrument.code.str() + "  " + instrument.name.str() + "  " +
                                instrument.exchangeId.str());
}

/// Null unless exactly one exchange lists the code.
rdservice::CInstrumentInfoPtr onlyOfCode(const QString& code) {
  const rdservice::TraderCenter* const centre = rdservice::TraderCenter::instance();
  if (centre == nullptr || code.isEmpty()) return nullptr;
  const CInstruments listed = instrumentsOfCode(centre->getDataCenter()->getInstruments(), code.toStdString());
  return listed.size() == 1 ? listed.front() : nullptr;
}

}  // namespace

/// Not the line edit's own completer: that writes every offer into the field that the user passes by.
struct CStockCodeLineEdit::Private {
  explicit Private(CStockCodeLineEdit* edit);

  void offer();
  void choose(const QModelIndex& index);
  void showName() const;

  CStockCodeLineEdit* q;
  QStandardItemModel* offered;
  QCompleter* completer;
  /// The security whose code stands in the field, when the code does not tell its exchange.
  QString chosenKey;
  QString chosenCode;
};

CStockCodeLineEdit::Private::Private(CStockCodeLineEdit* edit)
    : q(edit), offered(new QStandardItemModel(edit)), completer(new QCompleter(offered, edit)) {
  completer->setCompletionMode(QCompleter::UnfilteredPopupCompletion);
  completer->setCompletionRole(RoleCode);
  completer->setMaxVisibleItems(MOST_VISIBLE);
  completer->setWidget(edit);
  completer->popup()->setAccessibleName(QString::fromUtf8(OFFERED_NAME));
  connect(completer, QOverload<const QModelIndex&>::of(&QCompleter::activated), edit,
          [this](const QModelIndex& index) { choose(index); });
  connect(edit, &QLineEdit::textEdited, edit, [this] {
    chosenKey.clear();
    offer();
  });
  connect(edit, &QLineEdit::textChanged, edit, [this] { showName(); });
}

void CStockCodeLineEdit::Private::offer() {
  offered->clear();
  for (const auto& instrument : CExchangeClient::findInstruments(q->text(), MOST_OFFERED)) {
    auto* const item = new QStandardItem(lineOf(*instrument));
    item->setData(QString::fromStdString(instrument->code.str()), RoleCode);
    item->setData(QString::fromStdString(instrument->getKey()), RoleKey);
    item->setEditable(false);
    offered->appendRow(item);
  }
  QAbstractItemView* const popup = completer->popup();
  if (offered->rowCount() == 0) return popup->hide();
  popup->setFont(q->font());
  const int needed =
      popup->sizeHintForColumn(0) + popup->verticalScrollBar()->sizeHint().width() + 2 * popup->frameWidth();
  completer->complete(QRect(0, 0, std::max(q->width(), needed), q->height()));
  popup->setCurrentIndex(popup->model()->index(0, 0));
}

void CStockCodeLineEdit::Private::choose(const QModelIndex& index) {
  const QString before = q->stockCode();
  const QString textBefore = q->text();
  chosenCode = index.data(RoleCode).toString();
  chosenKey = index.data(RoleKey).toString();
  q->setText(chosenCode);
  showName();
  if (q->text() == textBefore && q->stockCode() == before) return;
  q->deliverEvent(GW::EventLineEditChanged, q->id(), 0, q->text(), nullptr);
}

/// Which security the code stands for.
void CStockCodeLineEdit::Private::showName() const {
  const QString key = q->stockCode();
  const auto instrument = key == q->text() ? nullptr : CExchangeClient::getInstrument(key);
  const QString name = instrument ? lineOf(*instrument) : QString();
  q->setToolTip(name);
  q->setAccessibleDescription(name);
}

CStockCodeLineEdit::CStockCodeLineEdit(int id, QWidget* parent)
    : GW::CLineEdit(id, parent), m_d(std::make_unique<Private>(this)) {}

CStockCodeLineEdit::~CStockCodeLineEdit() = default;

void CStockCodeLineEdit::setTradeType(int) {}

void CStockCodeLineEdit::setStockCode(const QString& code, int) {
  utils::assertGui();
  const auto instrument = CExchangeClient::getInstrument(code);
  const bool isKey = instrument && QString::fromStdString(instrument->getKey()) == code;
  m_d->chosenKey = isKey ? code : QString();
  m_d->chosenCode = isKey ? QString::fromStdString(instrument->code.str()) : QString();
  setText(isKey ? m_d->chosenCode : code);
  m_d->showName();
}

QString CStockCodeLineEdit::stockCode() const {
  utils::assertGui();
  const QString typed = text().trimmed();
  if (!m_d->chosenKey.isEmpty() && typed == m_d->chosenCode) return m_d->chosenKey;
  const auto only = onlyOfCode(typed);
  return only ? QString::fromStdString(only->getKey()) : typed;
}

}  // namespace VN
