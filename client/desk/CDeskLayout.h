#pragma once

#include <QByteArray>
#include <QString>

#include <map>
#include <set>
#include <utility>

/// Where the desk's window and docks were and how its panels were set up, as the layout file keeps it.
struct CDeskLayout {
  using CPanelKey = std::pair<QString, QString>;  ///< type key and id

  QByteArray geometry;                  ///< `QWidget::saveGeometry`
  QByteArray state;                     ///< `QMainWindow::saveState`
  std::map<CPanelKey, QString> params;  ///< what each panel's `param` returned
  std::set<CPanelKey> closed;           ///< those of `params` whose panels are not there
};

/// The file's text: JSON, the same for the same layout.
QByteArray layoutText(const CDeskLayout& layout);

/// Empty when `text` is a layout, which then stands in `layout`; else what is wrong and where, and `layout` is as it
/// was.
QString readLayoutText(const QByteArray& text, CDeskLayout& layout);
