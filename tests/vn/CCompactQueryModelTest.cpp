#include "vn/CCompactQueryModel.h"

#include "kit/CTestRuntime.h"
#include "kit/records.h"
#include "rdservice/CQueryCompactReqV2.h"
#include "rdservice/CStkClosedCompacts.h"
#include "rdservice/TraderCenter.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <atomic>
#include <sstream>
#include <thread>

namespace {

using kit::CTestRuntime;
using rdservice::IDataPtr;

constexpr const char* PLAIN = "3.1001";
constexpr const char* REPEATING = "3.1002";
constexpr int UNCLOSED = rdservice::RecordStkUnClosedCompacts;
constexpr int CLOSED = rdservice::RecordStkClosedCompacts;

rdservice::CAccountDataPtr dataOf(const char* key) {
  return rdservice::TraderCenter::instance()->getDataCenter()->getAccountData(key);
}

/// "C1@5" is compact C1 at position 5.
IDataPtr recordOf(const rdservice::CAccountInfoPtr& account, const std::string& text, int dataType, double unpaid) {
  const std::size_t at = text.find('@');
  if (dataType == CLOSED) {
    const auto closed = boost::make_shared<rdservice::CStkClosedCompacts>();
    closed->accountInfo = account;
    closed->fieldA = text.substr(0, at);
    closed->positionString = text.substr(at + 1);
    return closed;
  }
  const auto compact = kit::compact(account, text.substr(0, at), unpaid);
  compact->positionString = text.substr(at + 1);
  return compact;
}

std::vector<IDataPtr> recordsOf(const char* account, const std::string& texts, int dataType = UNCLOSED,
                                double unpaid = 1000) {
  std::vector<IDataPtr> records;
  std::istringstream words(texts);
  for (std::string text; words >> text;)
    records.push_back(recordOf(dataOf(account)->getAccountInfo(), text, dataType, unpaid));
  return records;
}

/// A query that nobody but itself holds, and what came of it.
struct CQuery {
  std::atomic<int> completions{0};
  bool success = false;
  std::vector<IDataPtr> records;
  std::string errorText;
  std::thread::id thread;
  std::vector<std::size_t> progress;
  std::vector<const void*> stack;  ///< where the progress calls stood

  void start(const char* account, int dataType = UNCLOSED) {
    const auto complete = [this](bool ok, std::vector<IDataPtr> got, std::string text) {
      success = ok;
      records = std::move(got);
      errorText = std::move(text);
      thread = std::this_thread::get_id();
      ++completions;
    };
    const auto tell = [this](std::size_t count) {
      progress.push_back(count);
      stack.push_back(__builtin_frame_address(0));
    };
    std::make_shared<VN::CCompactQueryModel>(dataOf(account)->getAccountInfo(), dataType, complete, tell)->start();
  }

  std::string positions() const {
    std::string text;
    for (const IDataPtr& data : records) {
      const auto unclosed = boost::dynamic_pointer_cast<rdservice::CStkUnClosedCompacts>(data);
      const auto closed = boost::dynamic_pointer_cast<rdservice::CStkClosedCompacts>(data);
      text += (unclosed ? unclosed->fieldA + "@" + unclosed->positionString
                        : closed->fieldA + "@" + closed->positionString) +
              " ";
    }
    return text;
  }
};

const rdservice::CQueryCompactReqV2& requestAt(CTestRuntime& runtime, std::size_t number) {
  return static_cast<const rdservice::CQueryCompactReqV2&>(*runtime.counter().held().at(number));
}

struct CCase {
  const char* name;
  const char* account;
  int dataType;
  std::vector<std::string> batches;  ///< "!" begins the text of a failure
  std::string asked;                 ///< positions that the requests continue after
  std::string records;               ///< of a success
  std::string error;                 ///< part of a failure's text
};

TEST(CCompactQueryModel, GoesOnToTheEnd) {
  const std::vector<CCase> cases = {
      {"nothing", PLAIN, UNCLOSED, {""}, "|", "", ""},
      {"to the end", PLAIN, UNCLOSED, {"C1@1 C2@2", "C3@3", ""}, "|2|3|", "C1@1 C2@2 C3@3 ", ""},
      {"closed compacts", PLAIN, CLOSED, {"C1@1 C2@2", ""}, "|2|", "C1@1 C2@2 ", ""},
      {"a compact at a new position", PLAIN, UNCLOSED, {"C1@1 C2@2", "C1@3 C4@4", ""}, "|2|4|", "C1@3 C2@2 C4@4 ", ""},
      {"repeats", REPEATING, UNCLOSED, {"C1@1 C2@2", "C2@2 C3@3", "C3@3"}, "|2|3|", "C1@1 C2@2 C3@3 ", ""},
      {"repeats behind", REPEATING, UNCLOSED, {"C1@1 C2@2", "C3@3 C2@2", ""}, "|2|3|", "C1@1 C2@2 C3@3 ", ""},
      {"only known", PLAIN, UNCLOSED, {"C1@1 C2@2", "C1@1 C2@3"}, "|2|", "", "重复返回"},
      {"same position", PLAIN, UNCLOSED, {"C1@1 C2@2", "C3@2"}, "|2|", "", "位置没有前进"},
      {"no positions", PLAIN, UNCLOSED, {"C1@ C2@"}, "|", "", "位置没有前进"},
      {"failure at first", PLAIN, UNCLOSED, {"!柜台繁忙"}, "|", "", "柜台繁忙"},
      {"failure in the middle", PLAIN, UNCLOSED, {"C1@1", "C2@2", "!柜台繁忙"}, "|1|2|", "", "柜台繁忙"},
  };
  for (const CCase& c : cases) {
    SCOPED_TRACE(c.name);
    runtime::CClientConfig config = kit::testConfig();
    config.broker.counterTypes[90].maxCompacts = 2;
    CTestRuntime runtime(config);
    CQuery query;
    query.start(c.account, c.dataType);
    EXPECT_EQ(query.completions, 0);
    std::string asked;
    for (std::size_t i = 0; i < c.batches.size(); ++i) {
      ASSERT_EQ(runtime.counter().held().size(), i + 1);
      const auto& request = requestAt(runtime, i);
      asked += request.positionString + "|";
      EXPECT_EQ(request.dataType, c.dataType);
      EXPECT_EQ(request.compactType, rdservice::CompactTypeAll);
      EXPECT_EQ(request.accountKey, c.account);
      EXPECT_EQ(request.requestCount, c.account == PLAIN ? 2 : 10000);
      if (c.batches[i][0] == '!')
        runtime.counter().fail(i, 8, c.batches[i].substr(1));
      else
        runtime.counter().reply(i, recordsOf(c.account, c.batches[i], c.dataType));
      runtime.settle();
      EXPECT_EQ(query.completions, i + 1 == c.batches.size() ? 1 : 0);
    }
    runtime.counter().reply(0, {});
    runtime.settle();
    EXPECT_EQ(asked, c.asked);
    EXPECT_EQ(runtime.counter().held().size(), c.batches.size());
    EXPECT_EQ(query.completions, 1);
    EXPECT_NE(query.thread, std::this_thread::get_id());
    EXPECT_EQ(query.success, c.error.empty()) << query.errorText;
    EXPECT_EQ(query.positions(), c.records);
    EXPECT_NE(query.errorText.find(c.error), std::string::npos) << query.errorText;
    EXPECT_EQ(query.errorText.empty(), c.error.empty());
  }
}

TEST(CCompactQueryModel, ManyBatchesNeedNoDeeperStack) {
  constexpr std::size_t BATCHES = 100;
  CTestRuntime runtime;
  CQuery query;
  query.start(PLAIN);
  std::vector<std::size_t> counts;
  for (std::size_t i = 0; i < BATCHES; ++i) {
    const std::string number = std::to_string(1000 + i);
    runtime.counter().reply(i, recordsOf(PLAIN, "A" + number + "@" + number + "a B" + number + "@" + number + "b"));
    ASSERT_TRUE(kit::waitUntil([&] { return runtime.counter().held().size() == i + 2; }));
    counts.push_back(2 * i + 2);
  }
  runtime.counter().reply(BATCHES, {});
  runtime.settle();
  EXPECT_TRUE(query.success);
  EXPECT_EQ(query.records.size(), 2 * BATCHES);
  EXPECT_EQ(query.progress, counts);
  EXPECT_EQ(std::count(query.stack.begin(), query.stack.end(), query.stack.front()), std::ptrdiff_t(BATCHES));
}

TEST(CCompactQueryModel, CompletesOnceWhenTheClientStops) {
  CQuery out;
  CQuery late;
  {
    CTestRuntime runtime;
    out.start(PLAIN);
    runtime.counter().reply(0, recordsOf(PLAIN, "C1@1"));
    runtime.settle();
    EXPECT_EQ(out.completions, 0);
    runtime.client().stop();
    EXPECT_EQ(out.completions, 1);
    late.start(PLAIN);
  }
  for (const CQuery* query : {&out, &late}) {
    EXPECT_EQ(query->completions, 1);
    EXPECT_FALSE(query->success);
    EXPECT_TRUE(query->records.empty());
    EXPECT_FALSE(query->errorText.empty());
  }
}

TEST(CCompactQueryModel, WhatWasPushedMeanwhileIsNewer) {
  CTestRuntime runtime;
  const rdservice::CAccountDataPtr store = dataOf(PLAIN);
  CQuery query;
  // Pushed after the first request and before the second: newer than the first batch, older than the second.
  store->updateCompacts(UNCLOSED, recordsOf(PLAIN, "C7@7"));  // unknown to the counter by now
  query.start(PLAIN);
  runtime.counter().push(recordsOf(PLAIN, "C1@1 C2@2 C9@9", UNCLOSED, 500));
  runtime.settle();
  runtime.counter().reply(0, recordsOf(PLAIN, "C1@1", UNCLOSED, 1000));
  runtime.settle();
  runtime.counter().reply(1, recordsOf(PLAIN, "C2@2", UNCLOSED, 200));
  runtime.settle();
  runtime.counter().reply(2, {});
  runtime.settle();
  ASSERT_TRUE(query.success);
  store->updateCompacts(UNCLOSED, query.records);
  std::vector<double> unpaid;
  for (const IDataPtr& data : store->getData(UNCLOSED))
    unpaid.push_back(boost::dynamic_pointer_cast<rdservice::CStkUnClosedCompacts>(data)->unpaidAmount);
  EXPECT_EQ(unpaid, (std::vector<double>{500, 200, 500}));
}

}  // namespace
