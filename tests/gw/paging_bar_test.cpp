// The bar under a paged table: what its clicks do to the page number, and what it shows.

#include "gw/table_flags.h"
#include "gw/view/CPagingBar.h"

#include <QComboBox>
#include <QPushButton>

#include <gtest/gtest.h>

#include <map>
#include <utility>

namespace {

/// Owns the bar; must not be told of the bar's own controls.
class COwner : public GW::CBaseWidget {
 public:
  COwner() : CBaseWidget(nullptr), bar(new GW::CPagingBar(this)) {
    connect(bar, &GW::CPagingBar::sigButton, this,
            [this](int button) { told += QStringLiteral("%1@%2 ").arg(button).arg(bar->page()); });
    connect(bar, &GW::CPagingBar::sigPageSizeChanged, this,
            [this](int size) { told += QStringLiteral("size %1 ").arg(size); });
  }
  bool handleEvent(int, int, int, QString, void*) override {
    ADD_FAILURE() << "an event left the bar";
    return true;
  }
  void click(const char* text) {
    for (auto* button : bar->findChildren<QPushButton*>()) {
      if (button->text() == QString::fromUtf8(text)) button->click();
    }
  }
  /// What the bar shows from the left; disabled in brackets.
  QString shown() const {
    std::map<int, QString> texts;
    for (const QWidget* child : bar->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
      const QString text = child->property(qobject_cast<const QComboBox*>(child) ? "currentText" : "text").toString();
      if (child->isVisible()) texts[child->x()] = child->isEnabled() ? text : QStringLiteral("(%1)").arg(text);
    }
    QStringList all;
    for (const auto& [x, text] : texts) all.push_back(text);
    return all.join(QLatin1Char(' '));
  }
  QString takeTold() { return std::exchange(told, QString()).trimmed(); }

  GW::CPagingBar* bar;
  QString told;
};

}  // namespace

TEST(PagingBar, clicksChangeThePageThenTell) {
  COwner owner;
  owner.bar->setParts(GW::PagingPartPages + GW::PagingPartLast + GW::PagingPartTotal);
  const struct {
    const char* button;
    int page, total;
    const char* sizes;
    const char* told;
  } cases[] = {
      {"首页", 7, 0, "500", "1@1"},   {"上一页", 7, 0, "500", "2@6"},  {"上一页", 1, 0, "500", "2@1"},
      {"下一页", 7, 0, "500", "4@8"}, {"末页", 1, 0, "500", "3@1"},    {"末页", 1, 499, "500", "3@1"},
      {"末页", 1, 500, "500", "3@2"}, {"末页", 1, 1499, "500", "3@3"}, {"末页", 1, 1499, "20,500", "3@75"},
      {"末页", 1, -1, "500", ""},     {"末页", 1, 1000, "", ""},       {"末页", 1, 1000, "x,0,-5", ""},
  };
  for (const auto& one : cases) {
    owner.bar->setPage(one.page);
    owner.bar->setTotal(one.total);
    owner.bar->setPageSizes(QString::fromLatin1(one.sizes).split(QLatin1Char(','), Qt::SkipEmptyParts));
    EXPECT_EQ(owner.takeTold(), QString()) << "a program tells nothing";
    owner.click(one.button);
    EXPECT_EQ(owner.takeTold(), QString::fromLatin1(one.told)) << one.button << one.total << one.sizes;
  }
  owner.bar->setPageSizes({QStringLiteral("20"), QStringLiteral("50")});
  owner.bar->findChild<QComboBox*>()->setCurrentIndex(1);
  EXPECT_EQ(owner.takeTold(), QStringLiteral("size 50"));
  for (int button : {1, 2, 3, 4, 0, 9}) owner.bar->setButtonEnabled(button, false);
  for (const char* button : {"首页", "上一页", "下一页", "末页"}) owner.click(button);
  EXPECT_EQ(owner.takeTold(), QString());
}

TEST(PagingBar, showsItsParts) {
  COwner owner;
  owner.resize(900, 60);
  owner.bar->setGeometry(0, 0, 900, owner.bar->sizeHint().height());
  owner.show();
  const struct {
    int parts, total;
    const char* sizes;
    const char* shown;
  } cases[] = {
      {0, 5, "", "首页 上一页 (下一页)"},
      {GW::PagingPartPages, -1, "", "首页 上一页 第 3 页 (下一页)"},
      {13, 1200, "500", "首页 上一页 第 3 页 (下一页) 末页 共 1200 条 每页 500 条"},
      {13, -1, "100,500", "首页 上一页 第 3 页 (下一页) (末页) 共 -- 条 每页 100 条"},
  };
  owner.bar->setPage(3);
  owner.bar->setButtonEnabled(GW::PagingNext, false);
  EXPECT_TRUE(owner.bar->isButtonEnabled(GW::PagingFirst) && !owner.bar->isButtonEnabled(GW::PagingNext));
  for (const auto& one : cases) {
    owner.bar->setParts(one.parts);
    owner.bar->setTotal(one.total);
    owner.bar->setPageSizes(QString::fromLatin1(one.sizes).split(QLatin1Char(','), Qt::SkipEmptyParts));
    owner.bar->updateItemLength();
    EXPECT_EQ(owner.shown().toStdString(), one.shown);
  }
}
