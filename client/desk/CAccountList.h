#pragma once

#include "rdservice/CAccountInfo.h"

#include <QTableWidget>

#include <string>
#include <vector>

/// The user's accounts, each with its state of log-in, kept current. GUI thread; needs a running client.
class CAccountList : public QTableWidget {
 public:
  /// Empty until the client knows its accounts; the first one is then selected.
  explicit CAccountList(QWidget* parent);

  /// Account keys in the order of the rows.
  std::vector<std::string> selectedAccounts() const;
  std::vector<std::string> allAccounts() const;

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 private:
  void fill();
  void showState(int row, const QString& why);
  std::string accountOf(int row) const;
  int rowOf(const std::string& accountKey) const;
  int widestState() const;
  QSize sizeForRows(int rows) const;
};
