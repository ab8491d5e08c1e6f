#pragma once

#include "utils/CSubscription.h"
#include "vn/CUserConfig.h"

#include <QTableWidget>
#include <QTimer>

#include <atomic>
#include <functional>
#include <vector>

/// The lines of a basket; the user types volumes. Amounts are those at the last price, as far as there is one, and
/// follow it while the table is visible. GUI thread; needs a running client.
class CBasketLines : public QTableWidget {
 public:
  using CBasketPtr = VN::CUserConfig::CBasketPtr;

  explicit CBasketLines(QWidget* parent);
  ~CBasketLines() override;

  /// Null shows nothing. The one that is shown already is shown as it is by now.
  void showBasket(const CBasketPtr& basket);
  /// Rising.
  std::vector<int> selectedLines() const;
  /// Yuan.
  double totalAmount() const;

  /// Called when the user has changed the shown basket.
  void onEdited(std::function<void()> call) { m_edited = std::move(call); }
  /// Called when amounts or lines are others.
  void onShown(std::function<void()> call) { m_shown = std::move(call); }

 private:
  class CVolumeDelegate;

  void showLine(int row);
  void showAmounts();
  void fitColumns();
  void setVolume(int row, std::int64_t volume);

  CBasketPtr m_basket;
  std::function<void()> m_edited;
  std::function<void()> m_shown;
  QTimer m_refresh;
  std::atomic<bool> m_hasNewQuotes{false};
  utils::CSubscriptionPtr m_quotes;
};
