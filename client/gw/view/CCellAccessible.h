#pragma once

#include <QAccessible>

namespace GW {

class CHpfTableView;
class CTableAccessible;
struct CTableColumn;

/// A cell or column header as assistive programs see it. GUI thread.
class CCellAccessible final : public QAccessibleInterface,
                              public QAccessibleTableCellInterface,
                              public QAccessibleActionInterface {
 public:
  /// The header of a column has slot -1. The table deletes it.
  CCellAccessible(const CTableAccessible& table, int slot, int columnId);

  int slot() const { return m_slot; }
  int columnId() const { return m_columnId; }
  const CTableAccessible& owner() const { return m_table; }
  void setSlot(int slot) { m_slot = slot; }
  /// Its record has gone.
  void setGone() { m_isGone = true; }

  bool isValid() const override;
  QObject* object() const override;
  QWindow* window() const override;
  void* interface_cast(QAccessible::InterfaceType type) override;
  QAccessibleInterface* childAt(int x, int y) const override;
  QAccessibleInterface* parent() const override;
  QAccessibleInterface* child(int index) const override;
  int childCount() const override;
  int indexOfChild(const QAccessibleInterface* child) const override;
  QString text(QAccessible::Text kind) const override;
  void setText(QAccessible::Text kind, const QString& text) override;
  QRect rect() const override;
  QAccessible::Role role() const override;
  QAccessible::State state() const override;

  bool isSelected() const override;
  QList<QAccessibleInterface*> columnHeaderCells() const override;
  QList<QAccessibleInterface*> rowHeaderCells() const override;
  int columnIndex() const override;
  /// -1 for a header.
  int rowIndex() const override;
  int columnExtent() const override;
  int rowExtent() const override;
  QAccessibleInterface* table() const override;

  QStringList actionNames() const override;
  void doAction(const QString& name) override;
  QStringList keyBindingsForAction(const QString& name) const override;

 protected:
  ~CCellAccessible() override;

 private:
  bool isHeader() const { return m_slot < 0; }
  CHpfTableView* view() const;
  /// Null when it is not valid.
  const CTableColumn* column() const;

  const CTableAccessible& m_table;
  int m_slot;
  const int m_columnId;
  bool m_isGone = false;
};

}  // namespace GW
