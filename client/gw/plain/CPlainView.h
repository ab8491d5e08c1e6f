#pragma once

#include <QTableView>

namespace GW {

class CPlainRows;

/// The rows of a plain table on the screen. Tab goes from one editable cell to the next while one is edited. GUI
/// thread.
class CPlainView : public QTableView {
  Q_OBJECT

 public:
  explicit CPlainView(const CPlainRows& rows, QWidget* parent);
  ~CPlainView() override;

  /// The selected row's cells, a tab between them.
  void copy() const;

 protected:
  QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  /// The next editable cell in reading order from the current one, or the first; invalid when there is none.
  QModelIndex nextEditable(int step) const;

  const CPlainRows& m_rows;
};

}  // namespace GW
