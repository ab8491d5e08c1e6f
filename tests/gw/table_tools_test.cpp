// What stands around a table's rows: the find bar and the accessible tree.

#include "CRowsByHand.h"

#include "gw/view/CFindBar.h"
#include "gw/view/CHpfTableView.h"
#include "gw/view/CTableAccessible.h"
#include "gw/view/CTableFace.h"

#include <QApplication>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace {

/// A view of rows in a window, with its find bar.
class CViewed : public CRowsByHand {
 public:
  CViewed() : view(new GW::CHpfTableView(rows, &window)), bar(new GW::CFindBar(*view, &window)) {
    about.push_back([this](const GW::CRowsChange& change) { view->rowsAboutToChange(change); });
    changed.push_back([this](const GW::CRowsChange& change) {
      view->rowsChanged(change);
      bar->rowsChanged(change);
      GW::updateTableAccessibility(*view, change);
    });
    view->setGeometry(0, 0, 700, 300);
    bar->setGeometry(0, 300, 700, 40);
    window.resize(700, 340);
    window.show();
    window.activateWindow();
    QApplication::setActiveWindow(&window);
    settle();
  }
  void find(const QString& text) {
    Q_EMIT view->sigFindRequested();
    bar->findChild<QLineEdit*>()->setText(text);
    finish();
  }
  void press(QWidget* at, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(at, key, modifiers);
    finish();
  }
  void finish() {
    while (bar->isSearching()) QCoreApplication::processEvents();
  }

  QWidget window;
  GW::CHpfTableView* view;
  GW::CFindBar* bar;
};

}  // namespace

TEST(FindBar, goesFromMatchToMatch) {
  CViewed held;
  held.append({QStringLiteral("alpha"), QStringLiteral("beta"), QStringLiteral("ALPHA2"), QStringLiteral("gamma"),
               QStringLiteral("alp")});
  auto* edit = held.bar->findChild<QLineEdit*>();
  const auto isNothing = [&held] {
    for (const QLabel* label : held.bar->findChildren<QLabel*>()) {
      if (label->text() == QString::fromUtf8("未找到")) return true;
    }
    return false;
  };
  const struct {
    const char* what;
    std::function<void()> act;
    int row;
    bool isNothing;
  } steps[] = {
      {"first", [&] { held.find(QStringLiteral("alp")); }, 0, false},
      {"longer text stays", [&] { held.find(QStringLiteral("alph")); }, 0, false},
      {"next, in any case", [&] { held.press(edit, Qt::Key_Return); }, 2, false},
      {"wraps", [&] { held.press(edit, Qt::Key_F3); }, 0, false},
      {"back wraps", [&] { held.press(edit, Qt::Key_Return, Qt::ShiftModifier); }, 2, false},
      {"back, in the view", [&] { held.press(held.view, Qt::Key_F3, Qt::ShiftModifier); }, 0, false},
      {"only match", [&] { held.find(QStringLiteral("gam")); }, 3, false},
      {"only match again", [&] { held.press(edit, Qt::Key_F3); }, 3, false},
      {"none", [&] { held.find(QStringLiteral("delta")); }, 3, true},
      {"another column", [&] { held.find(QStringLiteral("000002")); }, 1, false},
      {"hidden column",
       [&] {
         held.view->header()->hideSection(CTestRecord::ColumnId);
         held.find(QStringLiteral("000005"));
       },
       1, true},
  };
  for (const auto& step : steps) {
    SCOPED_TRACE(step.what);
    step.act();
    EXPECT_EQ(held.view->currentRow(), step.row);
    EXPECT_EQ(held.view->selectedRows(), std::vector<int>{step.row});
    EXPECT_EQ(isNothing(), step.isNothing);
  }
  held.press(edit, Qt::Key_Escape);
  EXPECT_TRUE(held.bar->isHidden());
  EXPECT_TRUE(held.view->hasFocus());
}

TEST(FindBar, goesOnFromItsRecordWhenRowsMove) {
  constexpr int COUNT = 60000;
  const struct {
    const char* what;
    bool isSorted;
    std::function<void(CRowsByHand&)> change;
    int row;
  } cases[] = {
      {"the match moves behind", true,
       [](CRowsByHand& held) { held.put({COUNT - 1}, {makeRecord(0, QStringLiteral("new"), 5)}); }, 6},
      {"the match comes", false, [](CRowsByHand& held) { held.append({QStringLiteral("new")}); }, COUNT},
      {"rows above are dropped, and the match comes", false,
       [](CRowsByHand& held) {
         GW::CRowsDrain drain;
         drain.replaced = true;
         for (int slot = 0; slot < COUNT; ++slot) drain.newSlots.push_back(slot < 100 ? -1 : slot - 100);
         held.rows.apply(std::move(drain));
         held.put({COUNT - 100}, {makeRecord(0, QStringLiteral("new"), 2)});
       },
       COUNT - 100},
      {"everything goes", true, [](CRowsByHand& held) { held.rows.clear(); }, -1},
  };
  for (const auto& one : cases) {
    SCOPED_TRACE(one.what);
    CViewed held;
    std::vector<rdservice::IDataPtr> records;
    for (int i = 0; i < COUNT; ++i) records.push_back(makeRecord(i, QStringLiteral("x"), i));
    held.append(records);
    if (one.isSorted) held.rows.setSort({{CTestRecord::ColumnVolume, Qt::AscendingOrder}});
    Q_EMIT held.view->sigFindRequested();
    held.bar->findChild<QLineEdit*>()->setText(QStringLiteral("new"));
    QCoreApplication::processEvents();
    ASSERT_TRUE(held.bar->isSearching());  // more than one turn
    one.change(held);
    held.finish();
    EXPECT_EQ(held.view->currentRow(), one.row);
  }
}

TEST(TableAccessible, showsTheTableAsItIsDisplayed) {
  GW::installTableAccessibility();
  auto held = std::make_unique<CViewed>();
  held->append({QStringLiteral("b"), QStringLiteral("a"), QStringLiteral("c")});
  held->put({1}, {held->rows.record(1)}, true);
  GW::CHpfTableView& view = *held->view;
  view.header()->hideSection(CTestRecord::ColumnGroup);
  view.header()->moveSection(view.header()->visualIndex(COLUMN_BOX), 0);

  QAccessibleInterface* root = QAccessible::queryAccessibleInterface(&view);
  ASSERT_NE(root, nullptr);
  EXPECT_EQ(root->role(), QAccessible::Table);
  QAccessibleTableInterface* table = root->tableInterface();
  ASSERT_NE(table, nullptr);
  const int columns = CTestRecord::ColumnCount;  // one is hidden, one more is there
  EXPECT_EQ(table->rowCount(), 3);
  ASSERT_EQ(table->columnCount(), columns);
  ASSERT_EQ(root->childCount(), 4 * columns);
  EXPECT_EQ(table->columnDescription(0), QString::fromUtf8("选择"));
  EXPECT_EQ(table->columnDescription(2), QString::fromUtf8("证券名称"));

  for (int i = 0; i < root->childCount(); ++i) {
    SCOPED_TRACE(i);
    QAccessibleInterface* child = root->child(i);
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(root->indexOfChild(child), i);
    EXPECT_EQ(child->parent(), root);
    EXPECT_EQ(child->role(), i < columns ? QAccessible::ColumnHeader : QAccessible::Cell);
    if (child->state().offscreen) continue;
    const QPoint center = child->rect().center();
    EXPECT_EQ(root->childAt(center.x(), center.y()), child);
  }
  EXPECT_EQ(root->child(-1), nullptr);
  EXPECT_EQ(root->child(4 * columns), nullptr);
  EXPECT_EQ(table->cellAt(0, columns), nullptr);
  EXPECT_EQ(table->cellAt(3, 0), nullptr);

  // A cell follows its record.
  QAccessibleInterface* cell = table->cellAt(0, 2);
  const QAccessible::Id id = QAccessible::uniqueId(cell);
  EXPECT_EQ(cell->text(QAccessible::Name), QStringLiteral("b"));
  EXPECT_EQ(cell->tableCellInterface()->columnHeaderCells().value(0), root->child(2));
  held->rows.setSort({{CTestRecord::ColumnName, Qt::AscendingOrder}});
  EXPECT_EQ(cell->tableCellInterface()->rowIndex(), 1);
  EXPECT_EQ(cell, table->cellAt(1, 2));
  EXPECT_EQ(table->cellAt(0, 2)->text(QAccessible::Name), QStringLiteral("a"));
  EXPECT_TRUE(table->cellAt(0, 0)->state().checked);
  EXPECT_TRUE(table->cellAt(1, 0)->state().checkable);
  EXPECT_FALSE(table->cellAt(1, 0)->state().checked);
  EXPECT_FALSE(cell->state().checkable);

  view.clearSelection();
  EXPECT_TRUE(table->selectRow(1));
  EXPECT_TRUE(table->selectRow(2));
  EXPECT_TRUE(cell->state().selected);
  EXPECT_EQ(table->selectedRows(), (QList<int>{1, 2}));
  EXPECT_EQ(table->selectedCells().size(), 2 * columns);
  EXPECT_TRUE(table->unselectRow(1));
  EXPECT_FALSE(cell->tableCellInterface()->isSelected());
  EXPECT_FALSE(table->selectRow(3));

  QStringList events;
  static_cast<GW::CTableAccessible*>(root)->announce = [&events](QAccessibleEvent* event) {
    const bool isFocus = event->type() == QAccessible::Focus;
    events.push_back(isFocus ? event->accessibleInterface()->text(QAccessible::Name) : QStringLiteral("model"));
  };
  view.setFocus();
  cell->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
  EXPECT_EQ(events, QStringList{QStringLiteral("b")});
  EXPECT_TRUE(cell->state().focused);
  EXPECT_EQ(root->focusChild(), cell);

  // Of the kept records the cells stay, the others go.
  QAccessibleInterface* other = table->cellAt(0, 2);
  const QAccessible::Id otherId = QAccessible::uniqueId(other);
  GW::CRowsDrain drain;
  drain.replaced = true;
  drain.newSlots = {-1, 0, 1};
  events.clear();
  held->rows.apply(std::move(drain));
  EXPECT_TRUE(events.contains(QStringLiteral("model")));
  EXPECT_FALSE(cell->isValid());
  EXPECT_EQ(root->indexOfChild(cell), -1);
  EXPECT_EQ(other, table->cellAt(0, 2));
  EXPECT_EQ(other->text(QAccessible::Name), QStringLiteral("a"));
  settle();
  EXPECT_EQ(QAccessible::accessibleInterface(id), nullptr);
  EXPECT_EQ(QAccessible::accessibleInterface(otherId), other);

  held.reset();
  EXPECT_EQ(QAccessible::accessibleInterface(otherId), nullptr);
}

TEST(TableAccessible, keepsFewCells) {
  GW::installTableAccessibility();
  CViewed held;
  std::vector<rdservice::IDataPtr> records;
  for (int i = 0; i < 2000; ++i) records.push_back(makeRecord(i, QStringLiteral("x"), i));
  held.append(records);
  QAccessibleInterface* root = QAccessible::queryAccessibleInterface(held.view);
  for (int i = 0; i < root->childCount(); ++i) ASSERT_NE(root->child(i), nullptr);
  settle();
  const auto count = static_cast<GW::CTableAccessible*>(root)->cellCount();
  EXPECT_GT(count, 0U);
  EXPECT_LT(count, 1000U);
}
