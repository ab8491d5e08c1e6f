// The compact table's added columns, selection, pages and priority answers.

#include "compacts/tables/CCompactsTable.h"
#include "compacts/tables/compact_fields.h"
#include "gw/column_delegates.h"
#include "gw/widget_events.h"
#include "kit/CExpectedBoxes.h"
#include "kit/CTestRuntime.h"
#include "kit/records.h"
#include "luawrapper/LuaModuleCtrl.h"
#include "rdservice/CCreditRepayPriorityResp.h"
#include "rdservice/TraderCenter.h"

#include <QSignalSpy>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/make_shared.hpp>

namespace {

using kit::columnOf;
using kit::CTestRuntime;
using luawrapper::LuaModuleCtrl;
using testing::ElementsAre;
using VN::CCompactsTable;

constexpr const char* A = "3.1001";
constexpr int UNCLOSED = rdservice::RecordStkUnClosedCompacts;

std::unique_ptr<CCompactsTable> makeTable(bool singleSelect, int tableId = VN::TableUnclosedCompacts) {
  return std::make_unique<CCompactsTable>(singleSelect ? 1 : 0, tableId, VN::recordTypeOfTable(tableId), nullptr);
}

rdservice::CAccountDataPtr data() { return rdservice::TraderCenter::instance()->getDataCenter()->getAccountData(A); }

rdservice::CStkUnClosedCompactsPtr compact(int number, char type = '0') {
  return kit::compact(data()->getAccountInfo(), "C" + std::to_string(number), 1000, type);
}

std::vector<rdservice::IDataPtr> compacts(int count) {
  std::vector<rdservice::IDataPtr> all;
  for (int i = 1; i <= count; ++i) all.push_back(compact(i));
  return all;
}

QString keyOf(const CCompactsTable& table, int row) { return QString::fromStdString(table.getData(row)->getKey()); }

/// Shows the records as a rebuild from the data centre does.
void show(CTestRuntime& runtime, CCompactsTable& table, const std::vector<rdservice::IDataPtr>& records) {
  data()->updateDatas(records);
  table.setAccount(A, false, false);
  runtime.settle();
}

}  // namespace

TEST(CompactsColumns, followVariantAndRights) {
  const std::string select = "选择", days = "展期天数", text = "偿还优先级", edit = "偿还优先级设置";
  const std::string renewal = "mdl_order_compact_renewal_apply", priority = "mdl_order_credit_priority";
  const std::string disable = "mdl_auth_credit_compact_order_disable_select";
  struct CCase {
    bool single;
    int tableId;
    int variant;
    std::set<std::string> order, auth;
    std::vector<std::string> columns;
    bool priorityFieldHidden;
  };
  const CCase cases[] = {
      {false, 0, 100, {renewal, priority}, {}, {select, days, text, edit}, false},
      {false, 0, 301, {renewal}, {}, {select, days}, true},
      {false, 0, 90, {priority}, {disable}, {text, edit}, false},
      {false, 0, 91, {}, {}, {}, true},
      {false, 0, 102, {renewal, priority}, {}, {}, true},
      {true, 0, 101, {renewal, priority}, {}, {select}, true},
      {true, 0, 101, {renewal, priority}, {disable}, {}, false},
      {true, 0, 99, {}, {}, {}, false},
      {false, 1, 100, {renewal, priority}, {}, {}, false},
      {true, 1, 100, {}, {}, {}, false},
  };
  for (const CCase& c : cases) {
    runtime::CClientConfig config = kit::testConfig();
    config.user.variantCode = c.variant;
    config.rights[LuaModuleCtrl::Order] = c.order;
    config.rights[LuaModuleCtrl::Auth] = c.auth;
    CTestRuntime runtime(config);
    SCOPED_TRACE(&c - cases);
    const auto table = makeTable(c.single, c.tableId);
    std::vector<std::string> added;
    for (const std::string& title : {select, days, text, edit})
      if (columnOf(*table, title.c_str()) >= 0) added.push_back(title);
    EXPECT_EQ(added, c.columns);
    const int field = table->getColumnIdByFileId(VN::FileIdUnclosedPriority);
    EXPECT_EQ(table->isColumnHidden(field), c.priorityFieldHidden && c.tableId == 0);
    EXPECT_EQ(table->priorityEditDelegate() != nullptr, columnOf(*table, edit.c_str()) >= 0);
    if (const int id = columnOf(*table, select.c_str()); id >= 0) {
      EXPECT_EQ(table->columnPosition(id), 0);
      EXPECT_EQ(table->columnWidth(id), 40);
      table->setSelectColumnVisible(false);
      EXPECT_TRUE(table->isColumnHidden(id));
      EXPECT_FALSE(table->isColumnChoosable(id));
    }
    if (!c.columns.empty() && c.columns.back() == edit) {
      const int id = table->getColumnIdByFileId(VN::FileIdUnclosedCode) + 1;
      EXPECT_EQ(table->columnPosition(table->priorityEditDelegate()->columnId() - 1),
                table->columnPosition(id - 1) + 1);
    }
  }
}

TEST(CompactsColumns, selectionIsOfOneOrOfMany) {
  CTestRuntime runtime;
  const auto many = makeTable(false);
  show(runtime, *many, compacts(5));
  auto* const check = many->columnDelegate(columnOf(*many, "选择"));
  for (const int row : {3, 1}) check->setItemChecked(keyOf(*many, row), true);
  QList<rdservice::IDataPtr> checked = many->checkedDatas();
  ASSERT_EQ(checked.size(), 2);
  EXPECT_EQ(checked[0], many->getData(1));
  EXPECT_EQ(checked[1], many->getData(3));
  EXPECT_EQ(many->currentCheckedData(), nullptr);
  many->clearRadioSelection();
  EXPECT_EQ(many->checkedDatas().size(), 2);
  many->onPushData(many->getData(3)->copy());  // the same values again: nothing is new
  data()->modifyData(UNCLOSED, many->getData(1)->getKey(),
                     [](rdservice::IData& r) { static_cast<rdservice::CStkUnClosedCompacts&>(r).unpaidAmount = 5; });
  many->onPushData(data()->getData(UNCLOSED)[1]);
  runtime.settle();
  EXPECT_THAT(many->checkedDatas(), ElementsAre(many->getData(3))) << "a push makes its row unticked";
  EXPECT_EQ(many->compactIndex(keyOf(*many, 0)), 1);
  EXPECT_EQ(many->compactIndex(keyOf(*many, 4)), 5);
  EXPECT_EQ(many->compactIndex(QStringLiteral("unknown")), 0);

  const auto one = makeTable(true);
  show(runtime, *one, {});
  auto* const radio = one->columnDelegate(columnOf(*one, "选择"));
  EXPECT_EQ(one->currentCheckedData(), nullptr);
  for (const int row : {3, 1}) radio->setItemChecked(keyOf(*one, row), true);
  EXPECT_EQ(one->currentCheckedData(), one->getData(1));
  EXPECT_TRUE(one->checkedDatas().isEmpty());
  one->clearRadioSelection();
  EXPECT_EQ(one->currentCheckedData(), nullptr);
  EXPECT_FALSE(radio->isItemChecked(keyOf(*one, 1)));
}

TEST(CompactsColumns, sourceFilterAndDoubleClick) {
  runtime::CClientConfig config = kit::testConfig();
  for (const int counterType : {100, 102, 200}) {
    config.user.counterType = counterType;
    CTestRuntime runtime(config);
    const auto table = makeTable(false);
    auto special = compact(2);
    special->source = '1';
    show(runtime, *table, {compact(1), special});
    table->setBrushSourceFilter('1');
    EXPECT_THAT(kit::visible(*table, {"合约编号"}), ElementsAre("C2"));

    QSignalSpy clicked(table.get(), &CCompactsTable::sigDoubleClickCompact);
    table->handleEvent(GW::EventRowDoubleClicked, 0, 0, QStringLiteral("unknown"), nullptr);
    EXPECT_EQ(clicked.count(), 0);
    table->handleEvent(GW::EventRowDoubleClicked, 0, 0, keyOf(*table, 0), nullptr);
    EXPECT_EQ(clicked.count(), counterType == 100 ? 1 : 0) << counterType;
  }
}

// The rule looks at the account's counter, not at the user's.
TEST(CompactsColumns, renewalDaysAreForCountersThatKnowThem) {
  CTestRuntime runtime;
  const auto table = makeTable(false);
  const auto second = rdservice::TraderCenter::instance()->getDataCenter()->getAccountData("3.1002");
  show(runtime, *table, {compact(1)});
  table->onPushData(kit::compact(second->getAccountInfo(), "D1"));
  runtime.settle();
  table->updateTable();
  const int column = columnOf(*table, "展期天数");
  const auto* const days = table->columnDelegate(column);
  kit::CExpectedBoxes boxes;
  boxes.expect(QStringLiteral("警告"), QStringLiteral("非金正柜台不可设置展期天数!"), QMessageBox::Ok);
  for (const int row : {0, 1}) {
    EXPECT_TRUE(table->handleEvent(GW::EventSpinBegin, column, 0, keyOf(*table, row), nullptr));
    EXPECT_EQ(days->isItemEnabled(keyOf(*table, row)), row == 1);
  }
}

TEST(CompactsPages, showFiveHundredRowsEach) {
  runtime::CClientConfig config = kit::testConfig();
  config.broker.useSplitPageOfStkCompact = true;
  CTestRuntime runtime(config);
  const auto table = makeTable(false);
  struct CPage {
    int button;  ///< pressed before; 0 for none
    int page, rows;
    const char* first;
    bool back, next, last;
  };
  const auto check = [&](const std::vector<CPage>& pages) {
    for (const CPage& p : pages) {
      SCOPED_TRACE(testing::Message() << "page " << p.page);
      if (p.button != 0) {
        table->resetPageNum(p.page);
        EXPECT_TRUE(table->handleEvent(GW::EventButtonClicked, p.button, 0, QString(), nullptr));
      }
      runtime.settle();
      EXPECT_EQ(table->getPageNum(), p.page);
      ASSERT_EQ(table->rowCount(), p.rows);
      EXPECT_EQ(p.rows > 0 ? kit::visible(*table, {"合约编号"}).front() : "", p.first);
      EXPECT_EQ(table->isPagingQueryBtnEnabled(GW::PagingFirst), p.back);
      EXPECT_EQ(table->isPagingQueryBtnEnabled(GW::PagingPrevious), p.back);
      EXPECT_EQ(table->isPagingQueryBtnEnabled(GW::PagingNext), p.next);
      EXPECT_EQ(table->isPagingQueryBtnEnabled(GW::PagingLast), p.last);
    }
  };
  table->setAccount(A, true, false);
  runtime.settle();
  runtime.counter().reply(runtime.counter().held().size() - 1, compacts(1000));
  check({{0, 1, 500, "C1", false, true, true},
         {GW::PagingNext, 2, 500, "C501", true, true, true},
         {GW::PagingNext, 3, 0, "", true, false, false},
         {GW::PagingPrevious, 2, 500, "C501", true, true, true},
         {GW::PagingFirst, 1, 500, "C1", false, true, true}});

  // What was typed stands there again, also when other compacts have gone meanwhile and the rows have moved.
  auto* const edits = table->priorityEditDelegate();
  const QString typed = keyOf(*table, 0);
  edits->setItemText(typed, QStringLiteral("7"));
  check({{GW::PagingNext, 2, 500, "C501", true, true, true}, {GW::PagingPrevious, 1, 500, "C1", false, true, true}});
  EXPECT_EQ(edits->itemText(typed), QStringLiteral("7"));
  EXPECT_EQ(table->cellText(0, columnOf(*table, "偿还优先级设置")), QStringLiteral("7"));

  // The bar goes no further than there are pages, and pushes of other pages make no rows here.
  table->resetPageNum(3);
  table->handleEvent(GW::EventButtonClicked, GW::PagingNext, 0, QString(), nullptr);
  EXPECT_FALSE(table->isPagingQueryBtnEnabled(GW::PagingNext));
  check({{GW::PagingPrevious, 2, 500, "C501", true, true, true}});
  for (const int number : {3, 600, 1001}) table->onPushData(data()->updateData(compact(number, '1'), false));
  runtime.settle();
  check({{0, 2, 500, "C501", true, true, true}});
  EXPECT_EQ(table->getDataByKey(compact(600)->getKey()), data()->getData(UNCLOSED, compact(600)->getKey()));

  table->refresh("", true, true);
  runtime.settle();
  EXPECT_TRUE(edits->isEmpty());
  data()->removeMetaData(UNCLOSED);
  runtime.counter().reply(runtime.counter().held().size() - 1, compacts(500));
  check({{0, 1, 500, "C1", false, true, true}});
}

TEST(CompactsPriority, answersReachStoreAndRows) {
  CTestRuntime runtime;
  const auto table = makeTable(false);
  show(runtime, *table, compacts(3));
  const auto answer = [](const char* fieldA, const char* fieldB, int priority) {
    auto response = boost::make_shared<rdservice::CCreditRepayPriorityResp>();
    response->fieldA = fieldA;
    response->fieldB = fieldB;
    response->repayPriority = priority;
    return response;
  };
  const std::map<std::string, std::string> labels = {
      {"C1", "SH600000"}, {"C2", "SH600000"}, {"C3", "SZ000001"}, {"C9", "SH600000"}};
  table->postPriorityResults("3.9999", {answer("C1", "2460000", 1)}, labels);
  table->postPriorityResults(A,
                             {answer("C2", "2460000", 7), answer("C1", "text", 8), answer("C3", "2460000", 9),
                              answer("C4", "2460000", 10), answer("C9", "2460000", 11), nullptr, compact(1)},
                             labels);
  runtime.settle();
  table->updateTable();
  EXPECT_THAT(kit::visible(*table, {"合约编号", "偿还优先级"}), ElementsAre("C1 | ", "C2 | 7", "C3 | "));
  for (const auto& record : data()->getData(UNCLOSED)) {
    const auto& stored = static_cast<const rdservice::CStkUnClosedCompacts&>(*record);
    EXPECT_EQ(stored.repayPriority, stored.fieldA == "C2" ? 7 : 0);
    EXPECT_EQ(stored.modifyTag, stored.fieldA == "C2" ? "KV" : "");
  }
}
