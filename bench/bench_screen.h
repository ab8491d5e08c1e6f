#pragma once

#include "rdservice/CStkUnClosedCompacts.h"

#include <QAbstractScrollArea>
#include <QCoreApplication>
#include <QEvent>

#include <cstddef>

constexpr int SCREEN_ROWS = 40;
constexpr std::size_t SCREEN_COLUMNS = 22;
constexpr int SCREEN_WIDTH = 1920;  ///< pixels; longer texts are elided

inline int columnCount() { return int(rdservice::CStkUnClosedCompacts::structDes().size()); }

/// Paints what is due, as the event loop would.
inline void paintDue() { QCoreApplication::sendPostedEvents(nullptr, QEvent::UpdateRequest); }

/// Forty rows of 22 columns across a usual screen.
template <class Table>
void fitScreen(Table& table, int rowHeight) {
  int width = 0;
  std::size_t shown = 0;
  for (int column = 0; column < columnCount(); ++column) {
    const bool isShown = shown < SCREEN_COLUMNS;
    table.widget().setColumnHidden(column, !isShown);
    if (!isShown) continue;
    table.widget().setColumnWidth(column, SCREEN_WIDTH / int(SCREEN_COLUMNS));
    width += table.widget().columnWidth(column);
    ++shown;
  }
  QWidget& view = *table.area().viewport();
  for (int again = 0; again < 2; ++again) {  // a scroll bar may go
    table.widget().resize(table.widget().width() + width - view.width(),
                          table.widget().height() + SCREEN_ROWS * rowHeight - view.height());
    QCoreApplication::processEvents();
  }
}
