#pragma once

#include "utils/CSubscription.h"
#include "vn/CUserConfig.h"

#include <QWidget>

class CBasketLines;
class QLabel;
class QListWidget;
class QPushButton;
class QStackedWidget;

/// The user's baskets and the lines of the chosen one. What the user changes is saved at once. GUI thread; needs a
/// running client.
class CBasketPane : public QWidget {
 public:
  explicit CBasketPane(QWidget* parent);
  ~CBasketPane() override;

 private:
  using CBasketPtr = VN::CUserConfig::CBasketPtr;

  QWidget* makeNames();
  QWidget* makeLines();
  QPushButton* makeButton(const char* text, const char* accessibleName, void (CBasketPane::*press)());
  /// Shows the baskets as they are by now; the chosen one stays chosen, also under another name.
  void fill();
  void choose(int row);
  void showTotal();
  void enableButtons();
  void renameBasket();
  void deleteBasket();
  void deleteLines();
  void save();
  /// Tells the user why the baskets were not written; nothing when they were.
  void showProblem(const QString& problem);

  QStackedWidget* m_pages;
  QListWidget* m_names = nullptr;
  CBasketLines* m_lines = nullptr;
  QLabel* m_total = nullptr;
  QPushButton* m_deleteLines = nullptr;
  QList<CBasketPtr> m_baskets;
  CBasketPtr m_chosen;
  utils::CSubscriptionPtr m_changes;
};
