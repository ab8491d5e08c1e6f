#include "rdservice/broker_config.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace rdservice;

namespace {

CBrokerConfig readText(const char* text, std::vector<utils::CConfigError>& errors) {
  const QTemporaryDir folder;
  QFile file(folder.filePath(QStringLiteral("broker.toml")));
  EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(text) >= 0);
  file.close();
  return readBrokerConfig(file.fileName().toStdString(), errors);
}

}  // namespace

TEST(BrokerConfig, switchesReachTheServices) {
  std::vector<utils::CConfigError> errors;
  const auto config = readText(
      "[compacts]\nsplit_pages = true\nquery_by_type = false\n"
      "[[counter_type]]\nid = 2\nname = \"甲\"\nmax_compacts = 200\nrepeats_records = true\n"
      "[[counter_type]]\nid = 3\nrefuses_todays_renewal = true\n",
      errors);
  EXPECT_TRUE(errors.empty()) << errors.front().text();
  EXPECT_EQ(config.counterTypes.at(2).name, "甲");
  EXPECT_FALSE(DataHelper::isRenewalNotUseTodayCompactsPts(3)) << "no client runs";
  {
    const auto collector = makeConfigCollector(config);
    EXPECT_EQ(ConfigCollector::instance(), collector.get());
    EXPECT_TRUE(collector->useSplitPageOfStkCompact());
    EXPECT_FALSE(collector->calcCompactType());
    EXPECT_EQ(collector->getCounterMaxCompactsRespNum(2), 200);
    EXPECT_EQ(collector->getCounterMaxCompactsRespNum(9), 0);
    EXPECT_TRUE(collector->isGTJAQueryCompactsMode(2));
    EXPECT_FALSE(collector->isGTJAQueryCompactsMode(3));
    EXPECT_TRUE(DataHelper::isRenewalNotUseTodayCompactsPts(3));
    EXPECT_FALSE(DataHelper::isRenewalNotUseTodayCompactsPts(2));
  }
  EXPECT_EQ(ConfigCollector::instance(), nullptr);
}

TEST(BrokerConfig, faultsAreNamedWithTheirPlace) {
  const struct {
    const char* text;
    int line;
    const char* key;
    const char* message;
  } cases[] = {
      {"[compacts]\nsplit_pages = 1\n", 2, "compacts.split_pages", "true"},
      {"[compacts]\n\nsplit_page = true\n", 3, "split_page", "split_pages"},
      {"[[counter_type]]\nid = 2\nmax_compacts = -1\n", 3, "max_compacts", "0"},
      {"[[counter_type]]\nname = \"x\"\n", 1, "id", "missing"},
      {"[[counter_type]]\nid = 2\n[[counter_type]]\nid = 2\n", 4, "id", "twice"},
      {"[[counter_type]]\nid = 2\nlimit = 5\n", 3, "limit", "max_compacts"},
      {"pages = true\n", 1, "pages", "compacts"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    std::vector<utils::CConfigError> errors;
    const auto config = readText(c.text, errors);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0].line, c.line);
    EXPECT_NE(errors[0].key.find(c.key), std::string::npos) << errors[0].text();
    EXPECT_NE(errors[0].message.find(c.message), std::string::npos) << errors[0].text();
    EXPECT_FALSE(config.useSplitPageOfStkCompact);
  }
  std::vector<utils::CConfigError> errors;
  EXPECT_TRUE(readBrokerConfig("/nowhere/broker.toml", errors).calcCompactType) << "defaults";
  EXPECT_EQ(errors.size(), 1u);
}
