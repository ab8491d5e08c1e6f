#include "gw/plain/CPlainCells.h"

#include "gw/plain/CPlainRows.h"

#include "gw/view/pixel_lines.h"

#include <QAbstractItemView>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QInputMethod>
#include <QPainter>
#include <QToolTip>

namespace GW {

namespace {

constexpr int PADDING = 4;
constexpr int ROW_MARGIN = 8;

QRect textRect(const QRect& cell) { return cell.adjusted(PADDING, 0, -PADDING - 1, 0); }

QColor color(const char* key) { return CUiResource::getColor(QString::fromLatin1(key)); }

}  // namespace

CPlainCells::CPlainCells(const CPlainRows& rows, const CTableColors& colors, QObject* parent)
    : QStyledItemDelegate(parent), m_rows(rows), m_colors(colors) {}

CPlainCells::~CPlainCells() = default;

void CPlainCells::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
  const bool isSelected = option.state & QStyle::State_Selected;
  const bool isEnabled = option.state & QStyle::State_Enabled;
  painter->save();
  painter->fillRect(option.rect, isSelected             ? m_colors.selected
                                 : index.row() % 2 == 0 ? m_colors.background
                                                        : m_colors.alternate);
  drawLineRight(*painter, option.rect, m_colors.grid);
  drawLineBelow(*painter, option.rect, m_colors.grid);
  const CPlainColumn& column = m_rows.column(index.column());
  QFont font = option.font;
  font.setBold(column.isBold);
  painter->setFont(font);
  const QString text = index.data().toString();
  if (column.isEditable) {
    m_painter.paintField(*painter, option.rect, text, m_rows.alignment(index), isEnabled, option.palette);
  } else {
    const QRect place = textRect(option.rect);
    painter->setPen(isEnabled ? m_colors.text : m_colors.disabledText);
    painter->drawText(place, int(m_rows.alignment(index)) | Qt::TextSingleLine,
                      QFontMetrics(font).elidedText(text, Qt::ElideRight, place.width()));
  }
  if (option.state & QStyle::State_HasFocus) drawLineAround(*painter, option.rect, m_colors.current);
  painter->restore();
}

QSize CPlainCells::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
  QFont font = option.font;
  font.setBold(m_rows.column(index.column()).isBold);
  const QFontMetrics metrics(font);
  return {metrics.horizontalAdvance(index.data().toString()) + 2 * PADDING + 1, metrics.height() + ROW_MARGIN};
}

bool CPlainCells::helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                            const QModelIndex& index) {
  if (event->type() != QEvent::ToolTip) return QStyledItemDelegate::helpEvent(event, view, option, index);
  const bool isCut = index.isValid() && sizeHint(option, index).width() > option.rect.width();
  QToolTip::showText(event->globalPos(), isCut ? index.data().toString() : QString(), view);
  return true;
}

QWidget* CPlainCells::createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex& index) const {
  auto* const line = new QLineEdit(parent);
  line->setAlignment(m_rows.alignment(index));
  line->setStyleSheet(
      QStringLiteral(
          "QLineEdit { border: 1px solid %1; padding: 0px 2px; background: %2; color: %3; font-weight: %4; }")
          .arg(color("clr_table_control_accent").name(), color("clr_table_control_background").name(),
               m_colors.text.name(),
               m_rows.column(index.column()).isBold ? QStringLiteral("bold") : QStringLiteral("normal")));
  m_editor = line;
  return line;
}

void CPlainCells::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option, const QModelIndex&) const {
  editor->setGeometry(CControlPainter::frameRect(option.rect));
}

void CPlainCells::setEditorData(QWidget* editor, const QModelIndex& index) const {
  auto* const line = static_cast<QLineEdit*>(editor);
  if (!line->isModified()) line->setText(index.data().toString());  // not while the user types
}

void CPlainCells::setModelData(QWidget* editor, QAbstractItemModel*, const QModelIndex& index) const {
  const QString text = static_cast<QLineEdit*>(editor)->text();
  if (text != index.data().toString()) Q_EMIT sigEdited(index, text);
}

void CPlainCells::commit() {
  if (!m_editor) return;
  if (m_editor->hasFocus()) QGuiApplication::inputMethod()->commit();
  const QPointer<QLineEdit> editor = m_editor;
  Q_EMIT commitData(editor);
  if (editor) Q_EMIT closeEditor(editor);
  m_editor = nullptr;
}

}  // namespace GW
