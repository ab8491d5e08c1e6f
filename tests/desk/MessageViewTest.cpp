// Messages of the client's service in the desk.

#include "CMessageView.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>

#include <gtest/gtest.h>

namespace {

using VN::CMsgService;

QMessageBox* box() {
  QMessageBox* found = nullptr;
  const QWidgetList windows = QApplication::topLevelWidgets();
  for (QWidget* window : windows) {
    auto* const one = qobject_cast<QMessageBox*>(window);
    if (one == nullptr || !one->isVisible()) continue;
    EXPECT_EQ(found, nullptr) << "one at most";
    found = one;
  }
  return found;
}

void tell(const char* text, CMsgService::ELevel level, bool isPopup) {
  CMsgService::showMsg(QString::fromUtf8(text), CMsgService::KindTrade, level, isPopup, false, QStringLiteral("展期"),
                       1);
  QCoreApplication::processEvents();  // what many messages need, they get once
}

TEST(MessageView, ShowsMessagesAndGathersThoseThatPopUpInOneBox) {
  {
    QWidget window;
    CMessageView view(&window);
    window.show();
    tell("一", CMsgService::LevelInfo, false);
    EXPECT_EQ(box(), nullptr);
    tell("<b>二</b>", CMsgService::LevelInfo, true);
    ASSERT_NE(box(), nullptr);
    EXPECT_FALSE(box()->isModal());
    EXPECT_EQ(box()->icon(), QMessageBox::Information);
    tell("三", CMsgService::LevelError, true);
    EXPECT_EQ(box()->text(), QString::fromUtf8("<b>二</b>\n三"));
    EXPECT_EQ(box()->windowTitle(), QStringLiteral("展期"));
    EXPECT_EQ(box()->icon(), QMessageBox::Warning);
    ASSERT_EQ(view.count(), 3);
    for (int i = 0; i < 3; ++i)
      EXPECT_TRUE(
          view.item(i)->text().endsWith(QString::fromUtf8(std::vector<const char*>{"一", "<b>二</b>", "三"}[i])));

    box()->buttons().constFirst()->click();
    EXPECT_EQ(box(), nullptr);
    tell("四", CMsgService::LevelInfo, true);
    ASSERT_NE(box(), nullptr);
    EXPECT_EQ(box()->text(), QString::fromUtf8("四")) << "a box that was closed is over";
    for (int i = 0; i < 1500; ++i) tell("五", CMsgService::LevelInfo, true);
    EXPECT_LT(box()->text().count(QLatin1Char('\n')), 20) << "it stays on the screen";
    EXPECT_EQ(view.count(), 1000);
  }
  EXPECT_EQ(box(), nullptr) << "it goes with the view";
  tell("六", CMsgService::LevelInfo, true);
  EXPECT_EQ(box(), nullptr);
}

}  // namespace
