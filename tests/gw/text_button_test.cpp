// Buttons of several items, links, tips and menu entries with a parameter: what the user does, what is told.

#include "gw/CBaseWidget.h"
#include "gw/CComboPushButton.h"
#include "gw/CMessageTip.h"
#include "gw/CParamAction.h"
#include "gw/CSimpleTextWidget.h"
#include "gw/CTipWindow.h"

#include <QAccessible>
#include <QApplication>
#include <QMenu>
#include <QTest>

#include <gtest/gtest.h>

#include <functional>
#include <utility>

namespace {

class CReceiver : public GW::CBaseWidget {
 public:
  CReceiver() : CBaseWidget(nullptr) { resize(400, 300); }
  bool handleEvent(int type, int p1, int p2, QString text, void*) override {
    told += QStringLiteral("%1 %2 %3 %4;").arg(type).arg(p1).arg(p2).arg(text);
    return true;
  }
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() != QEvent::MouseButtonDblClick) return false;
    told += QStringLiteral("double;");
    return true;
  }
  /// What has been told once everything has come to rest.
  QString take() {
    QApplication::processEvents();
    return std::exchange(told, QString());
  }

  QString told;
};

QWidget* shownTip() {
  const QWidgetList windows = QApplication::topLevelWidgets();
  for (QWidget* window : windows)
    if (window->windowType() == Qt::ToolTip && window->isVisible()) return window;
  return nullptr;
}

}  // namespace

TEST(ComboPushButton, reportsTheItemThatIsClickedOrChosen) {
  CReceiver receiver;
  GW::CComboPushButton button(7, &receiver);
  EXPECT_EQ(button.currentItem(), -1);
  for (const char* text : {"买入", "卖出", "撤单"}) button.addItem(QString::fromUtf8(text));
  button.resize(button.sizeHint());
  button.installEventFilter(&receiver);
  receiver.show();
  const QPoint onText(10, 10);
  const QPoint onArrow(button.width() - 8, 10);
  const auto click = [&](QPoint place) { QTest::mouseClick(&button, Qt::LeftButton, Qt::NoModifier, place); };
  const auto press = [&](Qt::Key key, Qt::KeyboardModifiers with = {}) { QTest::keyClick(&button, key, with); };
  const auto pressInList = [](std::initializer_list<Qt::Key> keys) {
    QWidget* const list = QApplication::activePopupWidget();
    ASSERT_NE(list, nullptr);
    for (const Qt::Key key : keys) QTest::keyClick(list, key);
  };
  const struct {
    const char* what;
    std::function<void()> run;
    const char* told;
    int current;
    const char* text;
  } steps[] = {
      {"click on the first item", [&] { click(onText); }, "96 0 7 ;", 0, "买入"},
      {"program", [&] { button.setCurrentItem(1), button.setCurrentItem(3), button.setCurrentItem(-1); }, "", 1,
       "卖出"},
      {"keyboard", [&] { press(Qt::Key_Space); }, "96 1 7 ;", 1, "卖出"},
      {"another from the list",
       [&] {
         click(onArrow), pressInList({Qt::Key_Down, Qt::Key_Return});
       },
       "96 2 7 ;", 2, "撤单"},
      {"the same from the list", [&] { press(Qt::Key_Down), pressInList({Qt::Key_Return}); }, "96 2 7 ;", 2, "撤单"},
      {"list given up",
       [&] {
         press(Qt::Key_Down, Qt::AltModifier), pressInList({Qt::Key_Up, Qt::Key_Escape});
       },
       "", 2, "撤单"},
      {"double click", [&] { click(onText), QTest::mouseDClick(&button, Qt::LeftButton, Qt::NoModifier, onText); },
       "96 2 7 ;double;", 2, "撤单"},
      {"disabled", [&] { button.setEnabled(false), click(onText), click(onArrow), press(Qt::Key_Down); }, "", 2,
       "撤单"},
  };
  for (const auto& step : steps) {
    SCOPED_TRACE(step.what);
    step.run();
    EXPECT_EQ(receiver.take(), QString::fromUtf8(step.told));
    EXPECT_EQ(button.currentItem(), step.current);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&button)->text(QAccessible::Name), QString::fromUtf8(step.text));
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
  }
}

TEST(SimpleText, aLinkIsFollowedByMouseAndKeyboard) {
  CReceiver receiver;
  GW::CSimpleTextWidget link(9, QString::fromUtf8("查看预约展期的全部记录"), &receiver);
  GW::CSimpleTextWidget label(QString::fromUtf8("全部记录"), &receiver);
  for (auto* text : {&link, &label}) text->resize(text->sizeHint());
  receiver.show();
  const QPoint outside(0, link.height() + 20);
  const auto drag = [&link](QPoint from, QPoint to) {
    QTest::mousePress(&link, Qt::LeftButton, Qt::NoModifier, from);
    QTest::mouseRelease(&link, Qt::LeftButton, Qt::NoModifier, to);
  };
  const auto follow = [](QWidget& text) {
    QAccessibleInterface* const known = QAccessible::queryAccessibleInterface(&text);
    known->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  };
  const struct {
    const char* what;
    std::function<void()> run;
    bool isFollowed;
  } steps[] = {
      {"click",
       [&] {
         drag({2, 2}, {3, 3});
       },
       true},
      {"pressed, released outside",
       [&] {
         drag({2, 2}, outside);
       },
       false},
      {"right button", [&] { QTest::mouseClick(&link, Qt::RightButton); }, false},
      {"space", [&] { QTest::keyClick(&link, Qt::Key_Space); }, true},
      {"return", [&] { QTest::keyClick(&link, Qt::Key_Return); }, true},
      {"another key", [&] { QTest::keyClick(&link, Qt::Key_A); }, false},
      {"accessibility", [&] { follow(link); }, true},
      {"label",
       [&] { QTest::mouseClick(&label, Qt::LeftButton), QTest::keyClick(&label, Qt::Key_Space), follow(label); },
       false},
      {"disabled",
       [&] {
         link.setEnabled(false), drag({2, 2}, {3, 3}), follow(link);
       },
       false},
  };
  for (const auto& step : steps) {
    step.run();
    EXPECT_EQ(receiver.take(), step.isFollowed ? QStringLiteral("9 9 0 ;") : QString()) << step.what;
  }
  EXPECT_EQ(QAccessible::queryAccessibleInterface(&link)->role(), QAccessible::Link);
  EXPECT_EQ(QAccessible::queryAccessibleInterface(&label)->role(), QAccessible::StaticText);
  EXPECT_EQ(QAccessible::queryAccessibleInterface(&label)->text(QAccessible::Name), label.text());

  const QSize whole = link.sizeHint();
  link.setWidthLimit(40);
  EXPECT_EQ(link.sizeHint(), QSize(42, whole.height()));
  link.grab();
  EXPECT_EQ(link.toolTip(), link.text()) << "the whole text of one that is cut";
  link.setWidthLimit(4000);
  link.grab();
  EXPECT_EQ(link.toolTip(), QString());
}

TEST(MessageTip, goesWhenItsTimeOrItsReasonIsOver) {
  const auto show = [](QWidget* at, int kind = GW::CMessageTip::Warning) {
    GW::CMessageTip::showTip(at, GW::CMessageTip::Below, QString::fromUtf8("价格超出涨跌停范围, 请检查"), kind, 3, 120);
    QApplication::processEvents();
  };
  auto window = std::make_unique<QWidget>();
  auto* const group = new QWidget(window.get());
  auto* field = new QWidget(group);
  field->setGeometry(20, 20, 100, 24);
  show(field);
  show(nullptr);
  EXPECT_EQ(shownTip(), nullptr) << "not without a visible widget";
  window->show();

  const auto timeOut = [] {
    const auto* tip = dynamic_cast<GW::CTipWindow*>(shownTip());
    EXPECT_EQ(tip->time().interval(), 3000);
    EXPECT_TRUE(tip->time().isActive());
    QMetaObject::invokeMethod(const_cast<QTimer*>(&tip->time()), "timeout", Qt::DirectConnection);
  };
  const struct {
    const char* what;
    std::function<void()> run;
  } ends[] = {
      {"time", timeOut},
      {"key", [&] { QTest::keyClick(field, Qt::Key_A); }},
      {"click", [&] { QTest::mouseClick(window.get(), Qt::LeftButton); }},
      {"group hidden", [&] { group->hide(), group->show(); }},
      {"window hidden", [&] { window->hide(), window->show(); }},
      {"window moved", [&] { window->move(window->pos() + QPoint(5, 5)), QApplication::processEvents(); }},
      {"window gone", [&] { window.reset(); }},
  };
  for (const auto& end : ends) {
    SCOPED_TRACE(end.what);
    show(field);
    ASSERT_NE(shownTip(), nullptr);
    show(field, GW::CMessageTip::Error);
    QWidget* const tip = shownTip();
    ASSERT_NE(tip, nullptr);
    EXPECT_LE(tip->width(), 120);
    EXPECT_GT(tip->height(), 2 * tip->fontMetrics().height()) << "wrapped";
    EXPECT_GE(tip->y(), field->mapToGlobal(QPoint(0, field->height())).y());
    delete std::exchange(field, new QWidget(group));  // as a cell's editor goes
    field->setGeometry(20, 20, 100, 24);
    field->show();
    EXPECT_EQ(shownTip(), tip);
    end.run();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(shownTip(), nullptr);
  }
  const QWidgetList left = QApplication::topLevelWidgets();
  EXPECT_TRUE(left.isEmpty());
}

TEST(ParamAction, tellsWhatItWasMadeWith) {
  QMenu menu;
  auto* const action = new GW::CParamAction(QStringLiteral("x"), 5, QStringLiteral("p"), &menu);
  QString told;
  QObject::connect(action, QOverload<bool, int, QString>::of(&GW::CParamAction::triggered), &menu,
                   [&](bool checked, int value, const QString& param) {
                     told += QStringLiteral("%1 %2 %3;").arg(checked).arg(value).arg(param);
                   });
  action->trigger();
  action->setCheckable(true);
  action->trigger();
  EXPECT_EQ(told, QStringLiteral("0 5 p;1 5 p;"));
}
