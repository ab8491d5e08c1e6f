#pragma once

#include "gw/CBaseWidget.h"
#include "gw/table_flags.h"
#include "host_api.h"

#include <QList>
#include <QStringList>

#include <memory>

class QAction;
class QMenu;

namespace GW {

/// What every table of the widget library offers. GUI thread unless noted.
class HOST_API IBaseTable : public CBaseWidget {
 public:
  IBaseTable(int tableId, QWidget* parent);
  ~IBaseTable() override;

  /// The id given at construction. Any thread.
  int getID() const;

  /// `ETableFlag` values, added up; none at first.
  int tableFlags() const;
  virtual void setTableFlags(int flags);

  /// Number of displayed rows (filtered, this page).
  virtual int rowCount() const = 0;

  // --- paging bar, shown with TableFlagPaging ---
  //
  // A click on one of its buttons changes the page number (first: 1; previous and next by one, not below 1; last: total
  // / page size + 1) and then reports EventButtonClicked with the button (`EPagingButton`). The owner shows that page.

  /// Rows a page to choose from; a single entry is shown as it is.
  void setPagingQueryType(const QStringList& pageSizes);
  /// What the bar shows, `EPagingPart` values added up.
  void setSimplePagingQueryType(int parts);
  /// Counted from 1. Any thread.
  int getPageNum() const;
  void resetPageNum(int page);
  /// Number of rows of all pages; -1: unknown.
  void setPagingTotal(int rows);
  /// A text behind the bar's buttons, such as how far a query is; empty for none.
  void setPagingNote(const QString& text);
  void setPagingQueryBtnEnable(int button, bool enabled);
  bool isPagingQueryBtnEnabled(int button) const;

  // --- context menu ---

  /// Adds an entry below the table's own; the table owns it.
  QAction* addMenuAction(const QString& text);
  void addMenuSeparator();
  /// Adds a menu below the entries; the table owns it.
  void addMenu(QMenu* menu);
  const QList<QAction*>& menuActions() const;

  /// The layout as text: columns by number, with width, order and hidden state, sort order and filters, headed by the
  /// table's record type. Never contains "|".
  virtual QString saveConfigStr() const = 0;
  /// Restores a layout. A damaged text, or one of another record type, changes nothing and gives false.
  virtual bool loadConfigStr(const QString& config) = 0;

  /// Fits every column's width to its header and the rows on screen.
  virtual void adjustVisibleRowsColumnWidth() = 0;

 protected:
  /// Commits what the user is typing into a cell, before a page is turned. Whoever is told may destroy the table.
  virtual void finishEditing() = 0;

  /// For the table's layout, under its rows.
  QWidget* pagingBar() const;

 private:
  struct Private;
  std::unique_ptr<Private> m_d;
};

}  // namespace GW
