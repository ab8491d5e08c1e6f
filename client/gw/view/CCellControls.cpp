#include "gw/view/CCellControls.h"

#include "gw/view/CCellControlsPrivate.h"

#include "gw/widget_events.h"

#include <QPainter>

namespace GW {

namespace {

constexpr int HIT_MARGIN = 4;  ///< pixels around a box where a click is still taken for it

}  // namespace

CCellControls::Private::Private(CCellControls* controls, CHpfTableView& theView, CShownRows& theRows)
    : q(controls), view(theView), rows(theRows) {}

CBaseTableColumnWidgetDelegate* CCellControls::Private::delegate(int columnId) const {
  const CTableColumn* column = rows.column(columnId);
  return column == nullptr ? nullptr : column->delegate.get();
}

bool CCellControls::Private::hasSlot(int slot) const { return slot >= 0 && slot < rows.slotCount(); }

bool CCellControls::Private::isOpen(const CItemState& state) { return state.visible && state.enabled; }

bool CCellControls::Private::store(const CDelegateControl& control, const CItemChange& item) {
  const QPointer<CCellControls> self(q);
  control.rows->change([&item](CChangeSet& changes) {
    changes.add(item);
    changes.refresh = true;
  });
  Q_EMIT q->sigStored();
  return !self.isNull();
}

bool CCellControls::Private::deliver(int columnId, int type, int p2, const QString& text, void* data) {
  const QPointer<CCellControls> self(q);
  CBaseTableColumnWidgetDelegate* const receiver = delegate(columnId);
  if (receiver != nullptr) receiver->deliverEvent(type, columnId, p2, text, data);
  return !self.isNull();
}

bool CCellControls::Private::check(int slot, int columnId) {
  CBaseTableColumnWidgetDelegate* const target = delegate(columnId);
  if (target == nullptr || !hasSlot(slot)) return false;
  const CDelegateControl& control = CDelegateControl::of(*target);
  const bool isRadio = control.kind == ECellControl::RadioButton;
  if (!isRadio && control.kind != ECellControl::CheckBox) return false;

  CItemChange item;
  item.key = rows.key(slot);
  // Not what is shown: two quick clicks are two, also when the first waits to be shown.
  const CItemState state = control.rows->item(columnId, item.key);
  if (!isOpen(state)) return false;
  if (isRadio && state.checked) return true;
  item.part = isRadio ? EItemPart::CheckedAlone : EItemPart::Checked;
  item.column = columnId;
  item.on = !state.checked;

  const QString key = QString::fromStdString(item.key);
  if (!store(control, item)) return true;
  if (!deliver(columnId, EventCheckChanged, state.checked ? 0 : 1, key, nullptr)) return true;
  Q_EMIT q->sigStored();
  return true;
}

CCellControls::CCellControls(CHpfTableView& view, CShownRows& rows)
    : m_d(std::make_unique<Private>(this, view, rows)) {}

CCellControls::~CCellControls() { m_d->close(true); }

bool CCellControls::isControl(const CTableColumn& column) {
  return column.delegate && CDelegateControl::of(*column.delegate).kind != ECellControl::Text;
}

bool CCellControls::isEditable(const CTableColumn& column) {
  if (!column.delegate) return false;
  const ECellControl kind = CDelegateControl::of(*column.delegate).kind;
  return kind == ECellControl::IntSpinBox || kind == ECellControl::LineEdit;
}

void CCellControls::paint(QPainter& painter, const QRect& cell, int slot, int columnId, const QPalette& colors) const {
  const CTableColumn* column = m_d->rows.column(columnId);
  if (column == nullptr || !isControl(*column)) return;
  const CItemColumn* items = m_d->rows.items(columnId);
  if (items != nullptr && !items->isVisible(slot)) return;
  const bool isEnabled = m_d->view.isEnabled() && (items == nullptr || items->isEnabled(slot));
  const ECellControl kind = CDelegateControl::of(*column->delegate).kind;
  if (isEditable(*column)) {
    const QString text = items == nullptr ? QString() : items->text(slot);
    m_d->painter.paintField(painter, cell, text, column->alignment, isEnabled, colors);
  } else {
    m_d->painter.paintBox(painter, cell, kind, items != nullptr && items->isChecked(slot), isEnabled);
  }
}

bool CCellControls::press(int slot, int columnId, const QRect& cell, const QPoint& position) {
  const std::optional<int> present = m_d->commitBefore(slot);
  if (!present) return true;
  const CTableColumn* column = m_d->rows.column(columnId);
  if (column == nullptr || !m_d->hasSlot(*present)) return false;
  if (isEditable(*column)) return edit(*present, columnId, QString());
  const QRect box = CControlPainter::boxRect(cell, m_d->view.fontMetrics());
  const QRect area = box.adjusted(-HIT_MARGIN, -HIT_MARGIN, HIT_MARGIN, HIT_MARGIN);
  return isControl(*column) && area.contains(position) && m_d->check(*present, columnId);
}

bool CCellControls::toggle(int slot, int columnId) { return m_d->check(slot, columnId); }

}  // namespace GW
