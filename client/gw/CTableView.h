#pragma once

#include <QPersistentModelIndex>
#include <QTableView>

#include <set>
#include <utility>

namespace GW {

class CTableModel;

/// The standard view of a table: rows of one height, whole rows selected, texts that are cut have a tool tip. Model
/// columns are column ids. GUI thread.
class CTableView : public QTableView {
  Q_OBJECT

 public:
  CTableView(CTableModel* model, QWidget* parent);
  ~CTableView() override;

  /// The width at which the header shows its whole title beside the sort arrow.
  int headerWidth(int columnId) const;
  /// The width for a cell text.
  int textWidth(const QString& text) const;
  /// The first and last row on screen; -1 and -1 when there is none.
  std::pair<int, int> visibleRows() const;

  /// Whether the user may drag the column elsewhere; true unless set.
  void setColumnMovable(int columnId, bool movable);

  /// Keeps the record at the top of the screen where it is, while rows come, go and move.
  class CScrollKeeper {
   public:
    explicit CScrollKeeper(CTableView& view);
    ~CScrollKeeper();
    CScrollKeeper(const CScrollKeeper&) = delete;
    CScrollKeeper& operator=(const CScrollKeeper&) = delete;

   private:
    CTableView& m_view;
    QPersistentModelIndex m_top;
    int m_offset = 0;
  };

 Q_SIGNALS:
  /// The user clicked on a column's header.
  void sigHeaderClicked(int columnId);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void setLook();

  std::set<int> m_fixedColumns;  ///< ids of columns that the user may not move
};

}  // namespace GW
