#pragma once

#include "CSteadyRate.h"

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>

#include <string>
#include <vector>

class CAccountList;
class QGridLayout;
class QSpinBox;

namespace runtime {
class CClientRuntime;
}

/// The broker's side of the embedded counter: who is logged in, what happens to the compacts of the selected accounts,
/// how requests are answered, whether quotes move. GUI thread.
class CBrokerPane : public QWidget {
 public:
  /// `client` runs as long as the pane exists.
  CBrokerPane(runtime::CClientRuntime& client, QWidget* parent);
  ~CBrokerPane() override;

 private:
  /// A spin box in the grid's last row, behind its label or what stands in the place of one.
  QSpinBox* addSpinBox(QGridLayout& grid, QWidget* label, const char* accessibleName, int min, int max);
  void addLogins(QGridLayout& grid);
  void addChanges(QGridLayout& grid);
  void addReplies(QGridLayout& grid);
  void addQuotes(QGridLayout& grid);
  void setLogin(const std::vector<std::string>& accounts, bool login);
  void pushDue();

  runtime::CClientRuntime& m_client;
  CAccountList* m_accounts = nullptr;
  QSpinBox* m_rate = nullptr;
  CSteadyRate m_steady;
  QTimer m_pushTimer;
  QElapsedTimer m_sincePush;
  std::size_t m_turn = 0;
};
