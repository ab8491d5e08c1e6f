#pragma once

#include "gw/view/CControlPainter.h"
#include "gw/view/CTableColors.h"

#include <QLineEdit>
#include <QPointer>
#include <QStyledItemDelegate>

namespace GW {

class CPlainRows;

/// Paints and edits the cells of a plain table. GUI thread.
class CPlainCells : public QStyledItemDelegate {
  Q_OBJECT

 public:
  CPlainCells(const CPlainRows& rows, const CTableColors& colors, QObject* parent);
  ~CPlainCells() override;

  /// Takes over the text in the open editor, and closes it.
  void commit();

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                 const QModelIndex& index) override;

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const override;
  void setEditorData(QWidget* editor, const QModelIndex& index) const override;
  void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;

 Q_SIGNALS:
  /// The user has entered another text.
  void sigEdited(const QModelIndex& index, const QString& text) const;

 private:
  const CPlainRows& m_rows;
  const CTableColors& m_colors;
  mutable CControlPainter m_painter;
  mutable QPointer<QLineEdit> m_editor;
};

}  // namespace GW
