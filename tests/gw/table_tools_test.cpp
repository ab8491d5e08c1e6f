// What stands around a table's rows: the item model, the filter menu, the find bar and the accessible tree.

#include "CTestRecord.h"

#include "gw/CBaseHighPerformanceTable.h"
#include "gw/column_delegates.h"
#include "gw/table/CShownRows.h"
#include "gw/view/CFilterMenu.h"
#include "gw/view/CFilterValues.h"
#include "gw/view/CFindBar.h"
#include "gw/view/CHpfTableView.h"
#include "gw/view/CTableAccessible.h"
#include "gw/view/CTableFace.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QCheckBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <vector>

namespace {

constexpr int COLUMN_BOX = CTestRecord::ColumnCount;

CTestRecordPtr makeRecord(int id, const QString& name, std::int64_t volume) {
  auto record = boost::make_shared<CTestRecord>();
  record->id = QStringLiteral("%1").arg(id, 6, 10, QLatin1Char('0')).toStdString();
  record->name = name.toStdString();
  record->volume = volume;
  record->amount = double(id);
  return record;
}

/// Shown rows with a column for each field and one of check boxes, filled by hand.
class CRows : public GW::IRowsObserver {
 public:
  CRows() : m_table(1, nullptr) {
    for (const rdservice::CFieldDes& field : CTestRecord::structDes()) {
      GW::CTableColumn column;
      column.title = QString::fromUtf8(field.title);
      column.field = &field;
      column.width = 80;
      rows.addColumn(std::move(column));
    }
    GW::CTableColumn box;
    box.title = QString::fromUtf8("选择");
    box.width = 40;
    box.delegate = std::make_unique<GW::CBaseTableColumnCheckBoxDelegate>(COLUMN_BOX, &m_table);
    rows.addColumn(std::move(box));
    rows.setObserver(this);
  }
  ~CRows() override { rows.setObserver(nullptr); }

  /// Slots that are there already are changed, the next ones added.
  void put(const std::vector<int>& slots, const std::vector<rdservice::IDataPtr>& records, bool isChecked = false) {
    GW::CRowsDrain drain;
    drain.slots = slots;
    drain.records = records;
    GW::CItemColumn boxes;
    for (int i = 0; i < static_cast<int>(slots.size()); ++i) boxes.setChecked(i, isChecked);
    drain.items.emplace_back(COLUMN_BOX, boxes);
    rows.apply(std::move(drain));
  }
  void append(const std::vector<rdservice::IDataPtr>& records) {
    std::vector<int> slots;
    for (std::size_t i = 0; i < records.size(); ++i) slots.push_back(rows.slotCount() + static_cast<int>(i));
    put(slots, records);
  }
  void append(const QStringList& names) {
    std::vector<rdservice::IDataPtr> records;
    for (const QString& name : names) records.push_back(makeRecord(m_nextId++, name, 1));
    append(records);
  }

  void rowsAboutToChange(const GW::CRowsChange& change) override {
    for (const auto& tell : about) tell(change);
  }
  void rowsChanged(const GW::CRowsChange& change) override {
    for (const auto& tell : changed) tell(change);
  }

  GW::CShownRows rows;
  std::vector<std::function<void(const GW::CRowsChange&)>> about;
  std::vector<std::function<void(const GW::CRowsChange&)>> changed;

 private:
  GW::CStandardHpfTable m_table;  ///< of which the delegate is one
  int m_nextId = 1;
};

/// The texts of a model as its signals tell them.
class CMirror {
 public:
  explicit CMirror(QAbstractItemModel& model) : m_model(model) {
    const auto readAll = [this] {
      m_texts.clear();
      read(0, m_model.rowCount() - 1);
    };
    QObject::connect(&model, &QAbstractItemModel::dataChanged, &m_context,
                     [this](const QModelIndex& first, const QModelIndex& last) {
                       ++signalCount;
                       m_texts.erase(m_texts.begin() + first.row(), m_texts.begin() + last.row() + 1);
                       read(first.row(), last.row());
                     });
    QObject::connect(&model, &QAbstractItemModel::rowsInserted, &m_context,
                     [this](const QModelIndex&, int first, int last) {
                       ++signalCount;
                       read(first, last);
                     });
    QObject::connect(&model, &QAbstractItemModel::columnsInserted, &m_context, readAll);
    QObject::connect(&model, &QAbstractItemModel::layoutChanged, &m_context, readAll);
    QObject::connect(&model, &QAbstractItemModel::modelReset, &m_context, readAll);
    readAll();
  }

  bool isRight() {
    const std::vector<QStringList> seen = m_texts;
    m_texts.clear();
    read(0, m_model.rowCount() - 1);
    return seen == m_texts;
  }

  int signalCount = 0;

 private:
  void read(int first, int last) {
    for (int row = first; row <= last; ++row) {
      QStringList texts;
      for (int column = 0; column < m_model.columnCount(); ++column) {
        const QModelIndex index = m_model.index(row, column);
        texts.push_back(index.data().toString() + index.data(Qt::CheckStateRole).toString());
      }
      m_texts.insert(m_texts.begin() + row, texts);
    }
  }

  QAbstractItemModel& m_model;
  QObject m_context;
  std::vector<QStringList> m_texts;
};

void settle() {
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  QCoreApplication::processEvents();
}

}  // namespace

TEST(TableFace, itsSignalsTellEveryChange) {
  for (unsigned seed = 1; seed <= 30; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const auto below = [&random](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    CRows held;
    GW::CShownRows& rows = held.rows;
    GW::CTableFace face(rows, nullptr, nullptr);
    QAbstractItemModelTester tester(&face, QAbstractItemModelTester::FailureReportingMode::Fatal);
    CMirror mirror(face);
    held.about.push_back([&face](const GW::CRowsChange& change) { face.rowsAboutToChange(change); });
    held.changed.push_back([&face](const GW::CRowsChange& change) { face.rowsChanged(change); });
    const char* const names[] = {"融资", "融券", "约定", "", "Repo"};
    const auto newRecord = [&] { return makeRecord(below(900), QString::fromUtf8(names[below(5)]), below(9)); };

    for (int step = 0; step < 60; ++step) {
      SCOPED_TRACE(step);
      std::vector<std::pair<QPersistentModelIndex, rdservice::IDataPtr>> kept;
      for (int i = 0; i < 5 && face.rowCount() > 0; ++i) {
        const QModelIndex index = face.index(below(face.rowCount()), below(face.columnCount()));
        kept.emplace_back(index, rows.record(rows.slotAt(index.row())));
      }
      QSignalSpy resets(&face, &QAbstractItemModel::modelReset);
      mirror.signalCount = 0;
      switch (below(12)) {
        case 0: rows.clear(); break;
        case 1: {
          GW::CRowsDrain drain;
          drain.replaced = true;
          int next = 0;
          for (int slot = 0; slot < rows.slotCount(); ++slot) drain.newSlots.push_back(below(3) == 0 ? -1 : next++);
          rows.apply(std::move(drain));
          break;
        }
        case 2:
          rows.setSort({{below(CTestRecord::ColumnCount), below(2) == 0 ? Qt::AscendingOrder : Qt::DescendingOrder}});
          break;
        case 3: rows.setSort({}); break;
        case 4: rows.setFilter(CTestRecord::ColumnName, QStringList{QString::fromUtf8("融资"), QString()}); break;
        case 5: rows.setFilter(CTestRecord::ColumnName, std::nullopt); break;
        case 6: {
          face.columnAboutToBeAdded();
          GW::CTableColumn column;
          column.field = CTestRecord::structDes().begin();
          rows.addColumn(std::move(column));
          face.columnAdded();
          break;
        }
        default: {
          std::set<int> changed;
          if (below(2) == 0 && rows.slotCount() > 0) changed.insert(rows.slotCount() - 1);
          for (int i = below(40); i > 0 && rows.slotCount() > 0; --i) changed.insert(below(rows.slotCount()));
          std::vector<int> slots(changed.begin(), changed.end());
          for (int i = below(3) == 0 ? 0 : below(20); i > 0; --i) {
            const int next = rows.slotCount();
            slots.push_back(std::max(next, slots.empty() ? next : slots.back() + 1));
          }
          std::vector<rdservice::IDataPtr> records(slots.size());
          for (auto& record : records) record = newRecord();
          for (auto& [index, record] : kept) {
            for (std::size_t i = 0; i < slots.size(); ++i) {
              if (record == rows.record(slots[i]) && record != nullptr) record = records[i];
            }
          }
          held.put(slots, records, below(2) == 0);
        }
      }
      ASSERT_EQ(face.rowCount(), rows.rowCount());
      ASSERT_TRUE(mirror.isRight());
      EXPECT_LE(mirror.signalCount, 9);  // eight ranges and one insertion
      for (const auto& [index, record] : kept) {
        ASSERT_EQ(index.isValid(), resets.isEmpty());
        if (index.isValid()) {
          ASSERT_EQ(rows.record(rows.slotAt(index.row())), record);
        }
      }
    }
  }
}

namespace {

/// A menu of the name column, opened over a widget.
class CMenu {
 public:
  CMenu(CRows& rows, QWidget* view, int columnId) : menu(new GW::CFilterMenu(rows.rows, columnId, view)) {
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
    CRows held;
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
  CRows rows;
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

namespace {

/// A view of rows in a window, with its find bar.
class CViewed : public CRows {
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
    std::function<void(CRows&)> change;
    int row;
  } cases[] = {
      {"the match moves behind", true,
       [](CRows& held) { held.put({COUNT - 1}, {makeRecord(0, QStringLiteral("new"), 5)}); }, 6},
      {"the match comes", false, [](CRows& held) { held.append({QStringLiteral("new")}); }, COUNT},
      {"rows above are dropped, and the match comes", false,
       [](CRows& held) {
         GW::CRowsDrain drain;
         drain.replaced = true;
         for (int slot = 0; slot < COUNT; ++slot) drain.newSlots.push_back(slot < 100 ? -1 : slot - 100);
         held.rows.apply(std::move(drain));
         held.put({COUNT - 100}, {makeRecord(0, QStringLiteral("new"), 2)});
       },
       COUNT - 100},
      {"everything goes", true, [](CRows& held) { held.rows.clear(); }, -1},
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
