// Pages of a real counter, in each of its modes: pressed while replies are late and some fail, and walked to the end.

#include "compacts/tables/CCompactsPageTable.h"
#include "compacts/tables/compact_fields.h"
#include "gw/widget_events.h"
#include "kit/CTestRuntime.h"
#include "rdservice/CQueryCompactReqV2.h"
#include "runtime/CClientRuntime.h"
#include "vn/CTradeClient.h"
#include "vn/CUserConfig.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include <boost/make_shared.hpp>

#include <atomic>

namespace {

using kit::waitUntil;
using VN::CCompactsPageTable;

constexpr const char* PLAIN = "3.60010002";      // pages of 7
constexpr const char* REPEATING = "3.60010003";  // pages of 11; its counter repeats records

class PagesTest : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    const std::string folder = m_folder.path().toStdString();
    const std::atomic<bool> giveUp{false};
    const auto book =
        runtime::CClientRuntime::loadBook(SOURCE_DIR "/client/counter/sample_book", folder + "/counter.db", giveUp);
    ASSERT_TRUE(book.loaded) << book.errorText;
    for (const char* name : {"counter.toml", "rights.toml", "user.toml"}) {
      const QString shipped = QStringLiteral(SOURCE_DIR "/client/desk/config/") + QString::fromLatin1(name);
      ASSERT_TRUE(QFile::copy(shipped, path(name)));
    }
    write("broker.toml",
          "[compacts]\nsplit_pages = true\nquery_by_type = true\n"
          "[[counter_type]]\nid = 90\nmax_compacts = 7\n[[counter_type]]\nid = 100\nmax_compacts = 7\n"
          "[[counter_type]]\nid = 200\nmax_compacts = 7\n"
          "[[counter_type]]\nid = 102\nmax_compacts = 11\nrepeats_records = true\n");
    std::vector<std::string> errors;
    m_client = runtime::CClientRuntime::open({folder, folder + "/counter.db", std::string(), std::string()}, errors);
    ASSERT_TRUE(m_client) << errors.front();
    m_client->setCounterLatency(0);
    m_client->start();
    ASSERT_TRUE(waitUntil([] {
      return rdservice::isLoginStatusReady(VN::CTradeClient::instance()->getLoginStatus(PLAIN)) &&
             rdservice::isLoginStatusReady(VN::CTradeClient::instance()->getLoginStatus(REPEATING));
    }));
    m_table = std::make_unique<CCompactsPageTable>(0, VN::TableUnclosedCompacts, rdservice::RecordStkUnClosedCompacts,
                                                   nullptr);
  }
  void TearDown() override {
    m_table.reset();
    if (m_client) m_client->stop();
  }

  QString path(const char* name) const { return m_folder.filePath(QString::fromLatin1(name)); }
  void write(const char* name, const char* text) const {
    QFile file(path(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
  }

  /// Every compact of the account, in the counter's order.
  static std::vector<std::string> allKeys(const char* account) {
    const auto request = boost::make_shared<rdservice::CQueryCompactReqV2>();
    request->accountKey = account;
    request->compactType = rdservice::CompactTypeAll;
    std::vector<std::string> keys;
    std::atomic<bool> isAnswered{false};
    VN::CTradeClient::instance()->queryUnclosedCompacts(
        request,
        [&](const utils::RDError&, const std::vector<rdservice::IDataPtr>& records, int, const bson::BSONObj&) {
          for (const rdservice::IDataPtr& record : records) keys.push_back(record->getKey());
          isAnswered = true;
        });
    EXPECT_TRUE(waitUntil([&] { return isAnswered.load(); }));
    return keys;
  }

  void press(GW::EPagingButton button) { m_table->handleEvent(GW::EventButtonClicked, button, 0, QString(), nullptr); }
  bool isAtRest() const {
    return m_table->isUpToDate() && m_table->rowCount() > 0 &&
           (m_table->isPagingQueryBtnEnabled(GW::PagingNext) || m_table->isPagingQueryBtnEnabled(GW::PagingFirst));
  }

  QTemporaryDir m_folder;
  std::unique_ptr<runtime::CClientRuntime> m_client;
  std::unique_ptr<CCompactsPageTable> m_table;
};

INSTANTIATE_TEST_SUITE_P(Modes, PagesTest, testing::Values(PLAIN, REPEATING));

TEST_P(PagesTest, NoneIsMissingAndNoneComesTwice) {
  const std::vector<std::string> all = allKeys(GetParam());
  ASSERT_GT(all.size(), 20U);
  m_client->setCounterLatency(20);
  m_client->setCounterFailEvery(3);
  m_table->setAccount(GetParam() == PLAIN ? REPEATING : PLAIN, true, false);
  for (int i = 0; i < 10; ++i) press(GW::PagingNext);
  m_table->setAccount(GetParam(), true, false);
  for (int i = 0; i < 10; ++i) press(i % 3 == 0 ? GW::PagingPrevious : GW::PagingNext);
  m_table->setCompactType('1', 0);
  m_table->setCompactType(rdservice::CompactTypeAll, 0);
  m_client->setCounterLatency(0);
  m_client->setCounterFailEvery(0);
  m_table->refresh(std::string(), true, false);
  ASSERT_TRUE(waitUntil([this] { return isAtRest(); }));

  std::vector<std::string> walked;
  for (int page = 1;; ++page) {
    ASSERT_EQ(m_table->getPageNum(), page);
    for (int row = 0; row < m_table->rowCount(); ++row) walked.push_back(m_table->getData(row)->getKey());
    if (!m_table->isPagingQueryBtnEnabled(GW::PagingNext)) break;
    press(GW::PagingNext);
    ASSERT_TRUE(waitUntil([this] { return isAtRest(); }));
    if (m_table->getPageNum() == page) break;  // the last page was full
  }
  EXPECT_EQ(walked, all);
}

}  // namespace
