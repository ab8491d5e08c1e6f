#pragma once

#include <QString>
#include <QStringList>

/// What the command line asks for.
struct CDeskOptions {
  QString book;    ///< folder of CSV files to load first; empty: keep the database, or the sample book without one
  QString data;    ///< folder of the database, the log and the layout
  QString config;  ///< folder of the configuration files
  QString shots;   ///< folder for pictures: walk through every view, save them and end; empty: run normally
};

/// Reads the command line. False when it is wrong; the usage has then been written to standard error.
bool readDeskOptions(const QStringList& arguments, CDeskOptions& options);
