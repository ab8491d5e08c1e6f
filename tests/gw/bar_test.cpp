// The toolbar when its items do not all fit.

#include "gw/CBaseWidget.h"
#include "gw/CSimpleTextWidget.h"
#include "gw/containers.h"
#include "gw/controls.h"
#include "gw/widget_events.h"

#include <QApplication>
#include <QTest>
#include <QToolButton>

#include <gtest/gtest.h>

#include <map>
#include <utility>

namespace {

/// Owns a bar with five buttons of equal width, in groups of one, two and two, and a box of radio buttons at its end.
class CBarOwner : public GW::CBaseWidget {
 public:
  CBarOwner() : CBaseWidget(nullptr), bar(new GW::CAutoExpandToolBar(this)) {
    for (int id = 1; id <= 5; ++id) {
      if (id == 2 || id == 4) bar->addSeparator();
      buttons.push_back(new GW::CSmallNoNormalButton(id, QString::number(id), bar));
      buttons.back()->setFixedWidth(BUTTON);
      bar->addWidget(buttons.back());
    }
    show();
  }
  bool handleEvent(int type, int p1, int, QString, void*) override {
    told += QStringLiteral("%1:%2 ").arg(type).arg(p1);
    wasListOpen = QApplication::activePopupWidget() != nullptr;
    return true;
  }
  void setBarWidth(int width) {
    bar->setGeometry(0, 0, width, bar->sizeHint().height());
    QApplication::sendPostedEvents();
  }
  QToolButton* more() const { return bar->findChild<QToolButton*>(); }
  /// What the bar shows from the left: ids, "|" a separator, "»" the button of the list.
  QString shown() const {
    std::map<int, QString> parts;
    for (const QWidget* child : bar->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
      if (child->isWindow() || !child->isVisible()) continue;
      const QString text = child->property("text").toString();
      parts[child->x()] += text.isEmpty() ? QStringLiteral("|") : text;
      EXPECT_LE(child->geometry().right(), bar->width());
    }
    QString all;
    for (const auto& [x, part] : parts) all += part;
    return all;
  }
  /// The ids in the list from above.
  QString listed() const {
    const QWidget* list = QApplication::activePopupWidget();
    std::map<int, QString> parts;
    for (const auto* button : buttons)
      if (list != nullptr && button->parentWidget() == list && button->isVisible()) parts[button->y()] = button->text();
    QString all;
    for (const auto& [y, part] : parts) all += part;
    return all;
  }
  QString takeTold() { return std::exchange(told, QString()).trimmed(); }

  static constexpr int BUTTON = 60;
  GW::CAutoExpandToolBar* bar;
  std::vector<GW::CSmallNoNormalButton*> buttons;
  QString told;
  bool wasListOpen = false;
};

}  // namespace

TEST(Bar, itemsWithoutRoomGoIntoAListAndComeBack) {
  CBarOwner owner;
  const int whole = owner.bar->sizeHint().width();
  EXPECT_LT(owner.bar->minimumSizeHint().width(), CBarOwner::BUTTON + 20);
  const struct {
    int width;
    const char* hidden;  ///< ids that the owner has hidden
    const char* shown;
    const char* listed;
  } steps[] = {
      {whole, "", "1|23|45", ""},
      {whole - 1, "", "1|23|4»", "5"},
      {whole - CBarOwner::BUTTON, "", "1|23»", "45"},
      {150, "", "1»", "2345"},
      {owner.bar->minimumSizeHint().width(), "", "»", "12345"},
      {whole - CBarOwner::BUTTON, "", "1|23»", "45"},
      {whole - CBarOwner::BUTTON, "3", "1|2|45", ""},
      {whole - CBarOwner::BUTTON, "23", "1|45", ""},
      {150, "23", "1»", "45"},
      {150, "2345", "1", ""},
      {whole, "1", "23|45", ""},
      {whole, "45", "1|23", ""},
      {whole, "", "1|23|45", ""},
  };
  for (const auto& step : steps) {
    SCOPED_TRACE(testing::Message() << "width " << step.width << " without " << step.hidden);
    for (auto* button : owner.buttons)
      owner.bar->setItemVisible(button, !QString::fromLatin1(step.hidden).contains(button->text()));
    owner.setBarWidth(step.width);
    EXPECT_EQ(owner.shown(), QString::fromUtf8(step.shown));
    if (owner.more()->isVisible()) owner.more()->click();
    EXPECT_EQ(owner.listed(), QString::fromUtf8(step.listed));
    if (QWidget* list = QApplication::activePopupWidget()) list->close();
  }
  // Tab visits the items in the bar's order again.
  QString order;
  QWidget* widget = owner.buttons[0];
  do {
    for (const auto* button : owner.buttons)
      if (button == widget) order += button->text();
    widget = widget->nextInFocusChain();
  } while (widget != owner.buttons[0]);
  EXPECT_EQ(order, QStringLiteral("12345"));
}

TEST(Bar, itemsInTheListReportToTheOwner) {
  CBarOwner owner;
  owner.setBarWidth(150);
  const QString clicked = QStringLiteral("%1:3").arg(GW::EventButtonClicked);

  QTest::keyClick(owner.more(), Qt::Key_Down);
  QWidget* list = QApplication::activePopupWidget();
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(list->focusWidget(), owner.buttons[1]) << "the keyboard is on the first one";
  QTest::keyClick(list->focusWidget(), Qt::Key_Tab);
  EXPECT_EQ(list->focusWidget(), owner.buttons[2]);
  QTest::keyClick(list->focusWidget(), Qt::Key_Space);
  EXPECT_EQ(owner.takeTold(), clicked);
  EXPECT_FALSE(owner.wasListOpen) << "closed before the owner opens a dialog";

  QTest::mouseClick(owner.more(), Qt::LeftButton);
  ASSERT_EQ(owner.listed(), QStringLiteral("2345"));
  owner.setBarWidth(900);
  EXPECT_EQ(owner.listed(), QStringLiteral("2345")) << "stays while it is open";
  QTest::mouseClick(owner.buttons[2], Qt::LeftButton);
  EXPECT_EQ(owner.takeTold(), clicked);
  QApplication::sendPostedEvents();
  EXPECT_EQ(owner.shown(), QStringLiteral("1|23|45"));
  EXPECT_EQ(owner.buttons[2]->parentWidget(), owner.bar);

  // Texts that grow push others into the list, and an item that goes there can be destroyed there.
  owner.setBarWidth(owner.bar->sizeHint().width());
  owner.buttons[0]->setFixedWidth(3 * CBarOwner::BUTTON);
  owner.bar->updateItemLength();
  EXPECT_EQ(owner.shown(), QString::fromUtf8("1|2»"));
  delete owner.buttons[4];
  owner.buttons.pop_back();
  delete owner.buttons[3];
  owner.buttons.pop_back();
  owner.bar->updateItemLength();
  EXPECT_EQ(owner.shown(), QStringLiteral("1|23"));
}
