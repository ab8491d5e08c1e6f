#include "runtime/CClientConfig.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace {

using runtime::CClientConfig;

/// The shipped configuration folder with another counter.toml.
class CounterConfig : public testing::Test {
 protected:
  void SetUp() override {
    const QDir shipped(QStringLiteral(SOURCE_DIR "/client/desk/config"));
    const QStringList files = shipped.entryList(QDir::Files);
    for (const QString& name : files) ASSERT_TRUE(QFile::copy(shipped.filePath(name), m_folder.filePath(name)));
  }

  CClientConfig read(const char* counterText, std::vector<std::string>& errors) const {
    QFile file(m_folder.filePath(QStringLiteral("counter.toml")));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(counterText) >= 0);
    file.close();
    std::vector<utils::CConfigError> found;
    CClientConfig config = runtime::readClientConfig(m_folder.path().toStdString(), found);
    for (const utils::CConfigError& error : found) errors.push_back(error.text());
    return config;
  }

  QTemporaryDir m_folder;
};

TEST_F(CounterConfig, FaultsAreNamedWithTheirPlaceAndLeaveTheDefaults) {
  const struct {
    const char* text;
    const char* error;  ///< behind the file's path; null: none
    std::map<int, int> maxCompacts;
    std::set<int> repeatingTypes;
  } cases[] = {
      {"[[counter_type]]\nid = 90\nmax_compacts = 50\n[[counter_type]]\nid = 0\nrepeats_records = true\n"
       "[[counter_type]]\nid = 3\nmax_compacts = 0\n",
       nullptr,
       {{90, 50}},
       {0}},
      {"latency_ms = 60001\n", ":1: latency_ms: must be a whole number from 0 to 60000, not 60001", {}, {}},
      {"fill_delay_ms = 5\nquote_interval_ms = 9\n",
       ":2: quote_interval_ms: must be a whole number from 10 to 600000, not 9",
       {},
       {}},
      {"\nsilent_every = -1\n", ":2: silent_every: must be a whole number from 0 to 1000000, not -1", {}, {}},
      {"latency_ms = 0\n[[counter_type]]\nmax_compacts = 5\nrepeats_records = true\n",
       ":2: counter_type.id: is missing; every counter type needs its number",
       {},
       {}},
      {"[[counter_type]]\nid = 7\nmax_compacts = 5\n\n[[counter_type]]\nid = 7\nmax_compacts = 6\n"
       "repeats_records = true\n",
       ":6: counter_type.id: is used twice; every counter type needs a number of its own",
       {{7, 5}},
       {}},
      {"[[counter_type]]\nid = -1\nmax_compacts = 5\nrepeats_records = true\n",
       ":2: counter_type.id: must be a whole number from 0 to 2147483647, not -1",
       {},
       {}},
      {"[[counter_type]]\nid = \"90\"\nmax_compacts = 5\n",
       ":2: counter_type.id: must be a whole number from 0 to 2147483647, not \"90\"",
       {},
       {}},
      {"[[counter_type]]\nid = 1\nmax_compacts = -2\n[[counter_type]]\nid = 2\nmax_compacts = 9\n",
       ":3: counter_type.max_compacts: must be a whole number from 0 to 2147483647, not -2",
       {{2, 9}},
       {}},
      {"[[counter_type]]\nid = 1\nrenewal_refusal = \"no\"\n",
       ":3: counter_type.renewal_refusal: must be \"error\", \"record\" or \"reply\", not \"no\"",
       {},
       {}},
      {"[[counter_type]]\nid = 1\npage = 2\n",
       ":3: counter_type.page: unknown key; known here: id, max_compacts, renewal_days_before_expiry, "
       "renewal_max_days, "
       "renewal_max_times, renewal_refusal, renewal_today_allowed, repeats_records",
       {},
       {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    std::vector<std::string> errors;
    const CClientConfig config = read(c.text, errors);
    if (c.error == nullptr)
      EXPECT_EQ(errors, std::vector<std::string>());
    else
      EXPECT_EQ(errors, std::vector{m_folder.path().toStdString() + "/counter.toml" + c.error});
    EXPECT_EQ(config.counter.maxCompacts, c.maxCompacts);
    EXPECT_EQ(config.counter.repeatingTypes, c.repeatingTypes);
    EXPECT_EQ(config.counter.behaviour.latencyMs, 0);
    EXPECT_EQ(config.counter.behaviour.silentEvery, 0);
  }
  std::vector<std::string> errors;
  const CClientConfig config = read(
      "[[counter_type]]\nid = 5\nrenewal_days_before_expiry = 1\nrenewal_max_days = 2\nrenewal_max_times = 3\n"
      "renewal_today_allowed = false\nrenewal_refusal = \"reply\"\n",
      errors);
  const counter::CRenewalRules& rules = config.counter.renewalRules.at(5);
  EXPECT_EQ((std::vector{rules.daysBeforeExpiry, rules.maxDays, rules.maxTimes}), (std::vector{1, 2, 3}));
  EXPECT_FALSE(rules.isTodayAllowed);
  EXPECT_EQ(rules.refusal, counter::ERenewalRefusal::Reply);
}

}  // namespace
