// Plays every order of what can happen to a compact table - request, reply, duplicate, failure, push, clear, account
// switch, held strand - on the real table, and compares with a model that knows only the rules.

#include "compacts/tables/CCompactsTable.h"
#include "compacts/tables/compact_fields.h"
#include "kit/CTestRuntime.h"
#include "kit/records.h"
#include "rdservice/CStkClosedCompacts.h"
#include "rdservice/TraderCenter.h"

#include <gtest/gtest.h>

#include <array>
#include <deque>
#include <map>
#include <optional>

namespace {

using kit::CTestRuntime;
using VN::CCompactsTable;

enum EStep { Switch, Refresh, Clear, Reply, Duplicate, Fail, Push, ToggleStrand, STEP_COUNT };
constexpr const char* STEP_NAMES = "SRCrdfpt";
constexpr std::array<const char*, 2> ACCOUNTS = {"3.1001", "11.1003"};

/// What the table must show, from the rules alone. Values are rising numbers; a row is (account, value).
class CModel {
 public:
  void apply(EStep step) {
    switch (step) {
      case Switch:
        m_account = 1 - m_account;
        m_rows.clear();
        m_requests.push_back({m_account, ++m_clock});
        break;
      case Refresh:
        m_rows.clear();
        m_requests.push_back({m_account, ++m_clock});
        break;
      case Clear: m_rows.clear(); break;
      case Reply: {
        const auto request = takeRequest();
        const int value = ++m_value;
        if (request && request->account == m_account) run({request->account, value, request->mark, false, 0});
        break;
      }
      case Duplicate: break;
      case Fail: takeRequest(); break;
      case Push: {
        CStored& stored = m_store[0];
        stored = {++m_value, ++m_clock, ++m_version};
        run({0, stored.value, 0, true, stored.version});
        break;
      }
      case ToggleStrand:
        m_held = !m_held;
        if (!m_held) runAll();
        break;
      case STEP_COUNT: break;
    }
  }

  void release() {
    m_held = false;
    runAll();
  }

  bool held() const { return m_held; }
  std::size_t answered() const { return m_answered; }
  bool hasRequest() const { return m_answered < m_requests.size(); }
  int account() const { return m_account; }
  int value() const { return m_value; }
  int accountOfRequest(std::size_t number) const { return m_requests[number].account; }

  std::map<std::string, int> rows() const {
    std::map<std::string, int> rows;
    for (const auto& [account, row] : m_rows) rows[ACCOUNTS[std::size_t(account)]] = row.value;
    return rows;
  }

 private:
  struct CRequest {
    int account;
    int mark;
  };
  struct CStored {
    int value = 0;
    int basis = 0;  // when the value was true at the counter: of a push its arrival, of a reply its request
    int version = 0;
  };
  struct CTask {
    int account;
    int value;
    int mark;
    bool push;
    int version;
  };

  std::optional<CRequest> takeRequest() {
    if (!hasRequest()) return std::nullopt;
    return m_requests[m_answered++];
  }

  void run(const CTask& task) {
    m_tasks.push_back(task);
    if (!m_held) runAll();
  }

  void runAll() {
    for (; !m_tasks.empty(); m_tasks.pop_front()) {
      const CTask& task = m_tasks.front();
      if (task.push) {
        show(task.account, {task.value, 0, task.version}, false);
        continue;
      }
      CStored& stored = m_store[task.account];
      if (task.mark > stored.basis) stored = {task.value, task.mark, ++m_version};
      if (task.account == m_account) show(task.account, stored, true);
    }
  }

  void show(int account, const CStored& record, bool reply) {
    const auto row = m_rows.find(account);
    if (row == m_rows.end() || record.version > row->second.version || (reply && record.version == row->second.version))
      m_rows[account] = record;
  }

  int m_account = 0;
  bool m_held = false;
  int m_clock = 0;
  int m_value = 0;
  int m_version = 0;
  std::vector<CRequest> m_requests;
  std::size_t m_answered = 0;
  std::deque<CTask> m_tasks;
  std::map<int, CStored> m_store;
  std::map<int, CStored> m_rows;
};

class CPlayer {
 public:
  CPlayer(CTestRuntime& runtime, int tableId) : m_runtime(runtime), m_tableId(tableId) {
    for (const char* key : ACCOUNTS) m_accounts.push_back(dataOf(key)->getAccountInfo());
    m_subscription = dataOf(ACCOUNTS[0])
                         ->subscribe(VN::recordTypeOfTable(tableId), std::string(),
                                     [this](const std::vector<rdservice::IDataPtr>& changed) {
                                       for (const rdservice::IDataPtr& data : changed)
                                         if (m_table) m_table->onPushData(data);
                                     });
  }

  /// One sequence on a fresh table; the rows at its end must be the model's. Or the table is destroyed at its end, with
  /// the strand still held if the sequence holds it.
  void play(const std::vector<EStep>& steps, bool destroyInFlight) {
    for (const char* key : ACCOUNTS) dataOf(key)->removeMetaData(VN::recordTypeOfTable(m_tableId));
    m_firstRequest = m_runtime.counter().held().size();
    m_table = std::make_unique<CCompactsTable>(0, m_tableId, VN::recordTypeOfTable(m_tableId), nullptr);
    m_model = CModel();
    // The table starts on no account; the model starts on account 0 having shown it before.
    m_table->setAccount(ACCOUNTS[0], false, false);
    rest();
    for (const EStep step : steps) act(step);
    if (destroyInFlight) {
      m_subscription.reset();
      m_table.reset();
      m_latch.reset();
      m_runtime.settle();
      return;
    }
    m_latch.reset();
    m_model.release();
    m_runtime.settle();
    m_table->updateTable();
    EXPECT_EQ(shown(), m_model.rows()) << "after " << name(steps);
    m_table.reset();
  }

  static std::string name(const std::vector<EStep>& steps) {
    std::string text;
    for (const EStep step : steps) text += STEP_NAMES[step];
    return text;
  }

 private:
  static rdservice::CAccountDataPtr dataOf(const std::string& key) {
    return rdservice::TraderCenter::instance()->getDataCenter()->getAccountData(key);
  }

  void act(EStep step) {
    kit::CScriptedCounter& counter = m_runtime.counter();
    const std::size_t next = m_firstRequest + m_model.answered();
    const bool canAnswer = m_model.hasRequest();
    const int answering = canAnswer ? m_model.accountOfRequest(m_model.answered()) : 0;
    m_model.apply(step);
    switch (step) {
      case Switch: m_table->setAccount(ACCOUNTS[std::size_t(m_model.account())], true, false); break;
      case Refresh: m_table->refresh(std::string(), true, true); break;
      case Clear: m_table->clearData(true); break;
      case Reply:
        if (canAnswer) counter.reply(next, {record(answering)});
        break;
      case Duplicate:
        if (m_model.answered() > 0) counter.reply(next - 1, {record(0, -1), record(1, -1)});
        break;
      case Fail:
        if (canAnswer) counter.fail(next, 7, "柜台繁忙");
        break;
      case Push: counter.push({record(0)}); break;
      case ToggleStrand:
        if (m_model.held())
          m_latch.emplace();
        else
          m_latch.reset();
        break;
      case STEP_COUNT: break;
    }
    rest();
  }

  rdservice::IDataPtr record(int account) const { return record(account, m_model.value()); }
  rdservice::IDataPtr record(int account, int value) const {
    const rdservice::CAccountInfoPtr& info = m_accounts[std::size_t(account)];
    if (m_tableId == VN::TableUnclosedCompacts) return kit::compact(info, "C1", value);
    return kit::closedCompact(info, "C1", value);
  }

  void rest() {
    if (m_latch)
      m_runtime.settleWithoutStrand();
    else
      m_runtime.settle();
  }

  std::map<std::string, int> shown() const {
    std::map<std::string, int> rows;
    for (int row = 0; row < m_table->rowCount(); ++row) {
      const rdservice::IDataPtr record = m_table->getData(row);
      if (const auto open = boost::dynamic_pointer_cast<rdservice::CStkUnClosedCompacts>(record))
        rows[open->accountInfo->getKey()] = int(open->unpaidAmount);
      if (const auto closed = boost::dynamic_pointer_cast<rdservice::CStkClosedCompacts>(record))
        rows[closed->accountInfo->getKey()] = int(closed->repaidAmount);
    }
    return rows;
  }

  CTestRuntime& m_runtime;
  const int m_tableId;
  std::vector<rdservice::CAccountInfoPtr> m_accounts;
  std::unique_ptr<CCompactsTable> m_table;
  utils::CSubscriptionPtr m_subscription;
  std::optional<kit::CStrandLatch> m_latch;
  std::size_t m_firstRequest = 0;
  CModel m_model;
};

/// Every sequence of `length` steps that begins with a request.
void forEachSequence(int length, const std::function<void(const std::vector<EStep>&)>& play) {
  std::vector<EStep> steps(std::size_t(length), Switch);
  const std::function<void(std::size_t)> extend = [&](std::size_t at) {
    if (at == steps.size()) return play(steps);
    for (int step = 0; step < STEP_COUNT; ++step) {
      steps[at] = EStep(step);
      extend(at + 1);
    }
  };
  for (const EStep first : {Switch, Refresh}) {
    steps[0] = first;
    extend(1);
  }
}

class CompactsInterleaving : public testing::TestWithParam<int> {
 protected:
  CTestRuntime runtime;
};

INSTANTIATE_TEST_SUITE_P(Tables, CompactsInterleaving,
                         testing::Values(VN::TableUnclosedCompacts, VN::TableClosedCompacts));

TEST_P(CompactsInterleaving, EveryShortOrderEndsAsTheRulesSay) {
  CPlayer player(runtime, GetParam());
  forEachSequence(4, [&](const std::vector<EStep>& steps) {
    if (!HasFailure()) player.play(steps, false);
  });
}

TEST_P(CompactsInterleaving, LongOrdersThatOnceWentWrong) {
  CPlayer player(runtime, GetParam());
  const std::vector<std::vector<EStep>> sequences = {
      {Refresh, Switch, Switch, Reply, Reply},                    // A→B→A, the first answer late
      {Refresh, Switch, Switch, Reply, Reply, Reply, Duplicate},  // and everything answered in the end
      {Refresh, ToggleStrand, Reply, Switch, ToggleStrand},       // switched while the strand was busy
      {Refresh, ToggleStrand, Reply, Push, ToggleStrand},         // a push overtakes the reply before it
      {Refresh, Push, Reply},                                     // a reply older than the push
      {Refresh, Refresh, Reply, Push, Reply, Duplicate},
      {Refresh, ToggleStrand, Reply, Switch, Switch, ToggleStrand, Fail, Reply},
      {Refresh, ToggleStrand, Reply, Clear, ToggleStrand, Reply},
  };
  for (const auto& steps : sequences) player.play(steps, false);
}

TEST_P(CompactsInterleaving, DestroyedWithWorkInFlight) {
  for (const std::vector<EStep>& steps : std::vector<std::vector<EStep>>{
           {Refresh},
           {Refresh, ToggleStrand, Reply},
           {Refresh, ToggleStrand, Reply, Push, Push},
           {Refresh, Switch, ToggleStrand, Reply, Reply},
       }) {
    CPlayer player(runtime, GetParam());
    player.play(steps, true);
  }
  // Requests that outlived their tables are answered into nothing.
  for (std::size_t i = 0; i < runtime.counter().held().size(); ++i) runtime.counter().fail(i, 1, "late");
  runtime.settle();
  EXPECT_TRUE(runtime.logged("late").empty());
}

}  // namespace
