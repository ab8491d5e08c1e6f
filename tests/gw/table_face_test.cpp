// The item model of a table: its signals tell every change.

#include "CRowsByHand.h"

#include "gw/view/CTableFace.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <set>

namespace {

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

}  // namespace

TEST(TableFace, itsSignalsTellEveryChange) {
  for (unsigned seed = 1; seed <= 30; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const auto below = [&random](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    CRowsByHand held;
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
