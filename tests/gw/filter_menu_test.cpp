// The filter menu: what it offers, what accepting does, and that many values do not hold the program up.

#include "CRowsByHand.h"

#include "gw/view/CFilterMenu.h"
#include "gw/view/CFilterValues.h"
#include "gw/view/CHpfTableView.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace {

/// A menu of the name column, opened over a widget.
class CMenu {
 public:
  CMenu(CRowsByHand& rows, QWidget* view, int columnId) : menu(new GW::CFilterMenu(rows.rows, columnId, view)) {
    rows.changed.push_back([held = menu](const GW::CRowsChange& change) {
      if (held) held->rowsChanged(change);
    });
    menu->popup(QRect(100, 100, 80, 20));
    values = menu->findChild<GW::CFilterValues*>();
  }
  ~CMenu() { delete menu; }

  void type(const QString& text) {
    menu->findChild<QLineEdit*>()->setText(text);
    while (values && values->isSearching()) QCoreApplication::processEvents();
  }
  void toggle(const QString& name) {
    auto* list = menu->findChild<QListView*>();
    for (int row = 0; row < values->rowCount(); ++row) {
      if (!values->index(row).data().toString().startsWith(name)) continue;
      QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(values->index(row)).center());
    }
  }
  void press(Qt::Key key) {
    QTest::keyClick(menu->findChild<QLineEdit*>(), key);
    settle();
  }
  QPushButton* ok() const { return menu->findChildren<QPushButton*>().front(); }

  QPointer<GW::CFilterMenu> menu;
  QPointer<GW::CFilterValues> values;
};

}  // namespace

TEST(FilterMenu, whatIsAccepted) {
  // What the user does: -text ticks or unticks, ?text types, * is the box for all, ! is Enter, ^ is Escape, _ is Down,
  // the space bar and Enter in the list; > and % are other rows meanwhile. Filters: null is none, blank stands as "-".
  const struct {
    const char* what;
    const char* before;
    const char* acts;
    const char* after;
    bool isOpen;
  } cases[] = {
      {"everything ticked again", "融资", "* !", nullptr, false},
      {"one unticked", nullptr, "-融资 !", "- Repo 融券", false},
      {"unticked and ticked", nullptr, "-融资 -融资 !", nullptr, false},
      {"part of a text", nullptr, "?融 !", "融券 融资", false},
      {"in any case", nullptr, "?rEP !", "Repo", false},
      {"blank", nullptr, "?空白 !", "-", false},
      {"only what is shown and ticked", "融资 Repo", "?融 !", "融资", false},
      {"all that is shown", "Repo", "?融 * !", "融券 融资", false},
      {"text removed again", nullptr, "?Repo ? !", nullptr, false},
      {"nothing ticked", nullptr, "* !", nullptr, true},
      {"nothing found", nullptr, "?xyz !", nullptr, true},
      {"cancelled", nullptr, "-融资 ^", nullptr, false},
      {"by the keyboard", nullptr, "_", "Repo 融券 融资", false},
      {"rows loaded anew: ticks stay on their values", nullptr, "-融资 > !", "Repo 融券", false},
      {"a value's last row takes another value", nullptr, "* -Repo % !", "Repo", false},
  };
  const auto textsOf = [](const char* filter) -> std::optional<QStringList> {
    if (filter == nullptr) return std::nullopt;
    return QString::fromUtf8(filter).replace(QLatin1Char('-'), QString()).split(QLatin1Char(' '));
  };
  for (const auto& one : cases) {
    SCOPED_TRACE(one.what);
    CRowsByHand held;
    for (const char* name : {"融资", "融券", "", "Repo", "融资", "融资"}) held.append({QString::fromUtf8(name)});
    held.rows.setFilter(CTestRecord::ColumnName, textsOf(one.before));
    QWidget view;
    auto last = std::make_unique<CMenu>(held, &view, CTestRecord::ColumnName);
    CMenu menu(held, &view, CTestRecord::ColumnName);
    last.reset();  // it lets go of the values after this one has taken hold
    QSignalSpy spy(menu.menu, &GW::CFilterMenu::sigFilterChanged);
    EXPECT_EQ(menu.values->shownState(), one.before == nullptr ? Qt::Checked : Qt::PartiallyChecked);
    EXPECT_EQ(menu.values->index(3).data().toString(), QString::fromUtf8("融资  (3)"));
    EXPECT_EQ(menu.values->index(0).data().toString(), QString::fromUtf8("(空白)  (1)"));

    auto* list = menu.menu->findChild<QListView*>();
    for (const QString& act : QString::fromUtf8(one.acts).split(QLatin1Char(' '))) {
      switch (act[0].toLatin1()) {
        case '-': menu.toggle(act.mid(1)); break;
        case '?': menu.type(act.mid(1)); break;
        case '*': menu.menu->findChild<QCheckBox*>()->click(); break;
        case '!': menu.press(Qt::Key_Return); break;
        case '^': menu.press(Qt::Key_Escape); break;
        case '_':
          menu.press(Qt::Key_Down);
          QTest::keyClick(list, Qt::Key_Space);
          QTest::keyClick(list, Qt::Key_Return);
          settle();
          break;
        case '>':
          held.rows.clear();
          for (const char* name : {"融券", "New", "融资", "Repo"}) held.append({QString::fromUtf8(name)});
          break;
        case '%': held.put({3}, {makeRecord(4, QStringLiteral("New"), 1)}); break;
        default: FAIL();
      }
    }
    const std::optional<QStringList> after = held.rows.filter(CTestRecord::ColumnName);
    const std::optional<QStringList> wanted = textsOf(one.after);
    ASSERT_EQ(after.has_value(), wanted.has_value());
    if (after) {
      EXPECT_EQ(QSet<QString>(after->begin(), after->end()), QSet<QString>(wanted->begin(), wanted->end()));
    }
    ASSERT_EQ(!menu.menu.isNull(), one.isOpen);
    EXPECT_EQ(spy.count(), one.isOpen || QLatin1String(one.what) == QLatin1String("cancelled") ? 0 : 1);
    if (menu.menu) {
      EXPECT_FALSE(menu.ok()->isEnabled());
    }
  }
}

TEST(FilterMenu, looksThroughManyValuesInTurns) {
  constexpr int COUNT = 100000;
  CRowsByHand rows;
  std::vector<rdservice::IDataPtr> records;
  for (int i = 0; i < COUNT; ++i) records.push_back(makeRecord(i, QStringLiteral("a"), i));
  rows.append(records);
  auto view = std::make_unique<QWidget>();
  CMenu menu(rows, view.get(), CTestRecord::ColumnAmount);
  ASSERT_EQ(menu.values->rowCount(), COUNT);
  auto* text = menu.menu->findChild<QLineEdit*>();

  text->setText(QStringLiteral("99,999"));
  EXPECT_FALSE(menu.ok()->isEnabled());
  int turns = 0;
  for (; menu.values->isSearching(); ++turns) QCoreApplication::processEvents();
  EXPECT_GT(turns, 1);
  EXPECT_EQ(menu.values->rowCount(), 1);
  EXPECT_TRUE(menu.ok()->isEnabled());

  // The newest text wins, and what is accepted meanwhile waits for its end.
  text->setText(QStringLiteral("1"));
  QCoreApplication::processEvents();
  text->setText(QStringLiteral("99,9"));
  menu.press(Qt::Key_Return);
  ASSERT_TRUE(menu.menu);
  while (menu.menu) settle();
  EXPECT_EQ(rows.rows.rowCount(), 100);

  CMenu other(rows, view.get(), CTestRecord::ColumnAmount);
  other.menu->findChild<QLineEdit*>()->setText(QStringLiteral("1"));
  view.reset();
  EXPECT_TRUE(other.menu.isNull());
  settle();
}
