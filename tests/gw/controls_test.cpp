// Events of the controls, and which widget receives them.

#include "gw/controls.h"
#include "gw/CBaseWidget.h"
#include "gw/CMessageBox.h"
#include "gw/widget_events.h"
#include "kit/CExpectedBoxes.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QStandardItemModel>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace {

class CReceiver : public GW::CBaseWidget {
 public:
  explicit CReceiver(QWidget* parent = nullptr) : CBaseWidget(parent) {}
  bool handleEvent(int type, int p1, int, QString text, void*) override {
    events.push_back(QStringLiteral("%1 %2 %3").arg(type).arg(p1).arg(text).trimmed());
    return true;
  }
  std::vector<QString> take() { return std::exchange(events, {}); }

  std::vector<QString> events;
};

using CTexts = std::vector<QString>;

}  // namespace

TEST(Controls, comboBoxReportsEachRealChangeOnce) {
  CReceiver receiver;
  GW::CComboBox box(7, &receiver);
  const auto add = [&box](const char* key) { box.addItem(QString::fromUtf8("账户"), QString::fromLatin1(key)); };
  const auto event = [](const char* key) { return QStringLiteral("72 7 %1").arg(QLatin1String(key)).trimmed(); };
  const struct {
    const char* what;
    std::function<void()> run;
    CTexts expected;
  } steps[] = {
      {"first item becomes current", [&] { add("a"); }, {event("a")}},
      {"more items", [&] { add("b"), add("c"), add("b"); }, {}},
      {"program", [&] { box.setCurrentIndex(1); }, {event("b")}},
      {"another item of the same key", [&] { box.setCurrentIndex(3); }, {}},
      {"user",
       [&] {
         QKeyEvent up(QEvent::KeyPress, Qt::Key_Up, Qt::NoModifier);
         QApplication::sendEvent(&box, &up);
       },
       {event("c")}},
      {"insertion above moves the index only",
       [&] { box.insertItem(0, QStringLiteral("x"), QStringLiteral("x")); },
       {}},
      {"removal of the current item", [&] { box.removeItem(box.currentIndex()); }, {event("b")}},
      {"key exchanged in place", [&] { box.setItemData(box.currentIndex(), QStringLiteral("z")); }, {event("z")}},
      {"none", [&] { box.setCurrentIndex(-1); }, {event("")}},
      {"back", [&] { box.setCurrentIndex(0); }, {event("x")}},
      {"refill to the same key",
       [&] {
         box.beginRefill();
         box.clear();
         box.beginRefill();
         add("q"), add("x");
         box.endRefill();
         box.setCurrentIndex(1);
         box.endRefill();
       },
       {}},
      {"refill to another key",
       [&] {
         box.beginRefill();
         box.clear();
         add("n"), add("m");
         box.endRefill();
       },
       {event("n")}},
      {"emptied", [&] { box.clear(); }, {event("")}},
  };
  for (const auto& step : steps) {
    step.run();
    EXPECT_EQ(receiver.take(), step.expected) << step.what;
  }
}

TEST(Controls, eventsGoToTheReceiverOrTheNearestOwner) {
  CReceiver owner, other;
  QWidget between(&owner);
  GW::CBaseWidget plain(&between);  // hands on what it gets
  GW::CSmallNoNormalButton button(3, QString::fromUtf8("查询"), &plain);
  button.click();
  EXPECT_EQ(owner.take(), CTexts{QStringLiteral("5 3")});
  button.setEventReceiver(&other);
  button.click();
  EXPECT_TRUE(owner.take().empty());
  EXPECT_EQ(other.take(), CTexts{QStringLiteral("5 3")});
  {
    CReceiver gone;
    button.setEventReceiver(&gone);
  }
  button.click();
  EXPECT_EQ(owner.take(), CTexts{QStringLiteral("5 3")});
  plain.setParent(nullptr);
  EXPECT_FALSE(button.deliverEvent(GW::EventItemClicked, 0, 0, QString(), nullptr));
}

TEST(Controls, radioButtonsReportOnlyTheUsersChoice) {
  CReceiver receiver;
  GW::CRadioButtonGroup group(&receiver);
  for (int id : {20, 30, 40}) group.addButton(id, QString::number(id));
  EXPECT_EQ(group.checkedId(), -1);
  group.setChecked(30);
  group.setChecked(99);
  EXPECT_EQ(group.checkedId(), 30);
  EXPECT_TRUE(receiver.take().empty());
  group.button(30)->click();
  EXPECT_TRUE(receiver.take().empty());
  group.button(40)->click();
  EXPECT_EQ(receiver.take(), CTexts{QStringLiteral("5 40")});
  EXPECT_EQ(group.button(99), nullptr);
}

TEST(Controls, messageBoxesReturnTheirButton) {
  using FBox = int (*)(QWidget*, const QString&, const QString&, QMessageBox::StandardButtons);
  const QString title = QString::fromUtf8("提示");
  const QString text = QStringLiteral("<b>1</b>");
  // A box goes with its parent.
  auto parent = std::make_unique<QWidget>();
  QTimer::singleShot(0, parent.get(), [&parent] { parent.reset(); });
  EXPECT_EQ(GW::CMessageBox::warning(parent.get(), title, text), 0);
  kit::CExpectedBoxes boxes;
  for (const FBox box : {&GW::CMessageBox::information, &GW::CMessageBox::warning, &GW::CMessageBox::question}) {
    for (const auto answer : {QMessageBox::Yes, QMessageBox::No}) {
      boxes.expect(title, text, answer);
      EXPECT_EQ(box(nullptr, title, text, QMessageBox::Yes | QMessageBox::No), answer);
    }
  }
}
