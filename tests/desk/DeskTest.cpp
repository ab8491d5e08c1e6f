// The whole desk on the sample book: SQL counter, service threads, strand, window.

#include "CMainWindow.h"
#include "compacts/CCompactsPanel.h"
#include "compacts/tables/CCompactsTable.h"
#include "gw/controls.h"
#include "kit/CSignalCount.h"
#include "kit/CTestRuntime.h"
#include "rdservice/CStkUnClosedCompacts.h"
#include "rdservice/TraderCenter.h"
#include "runtime/CClientRuntime.h"
#include "utils/CEventLoopMeter.h"
#include "vn/CCountDownButton.h"
#include "vn/CTradeClient.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <map>

namespace {

using kit::waitUntil;

constexpr const char* LARGE = "3.60010001";  // 5,000 unclosed compacts
constexpr const char* EMPTY = "3.60010004";
constexpr int LATE_MS = 1500;

/// Unpaid yuan by compact key.
using CAmounts = std::map<std::string, double>;

class DeskTest : public testing::Test {
 protected:
  void SetUp() override {
    const std::string database = m_folder.filePath(QStringLiteral("counter.db")).toStdString();
    const auto book = runtime::CClientRuntime::loadBook(SOURCE_DIR "/client/counter/sample_book", database, m_giveUp);
    ASSERT_TRUE(book.loaded) << book.errorText;
    // The shipped configuration, without the refresh lock.
    const QDir shipped(QStringLiteral(SOURCE_DIR "/client/desk/config"));
    const QStringList files = shipped.entryList(QDir::Files);
    for (const QString& name : files) ASSERT_TRUE(QFile::copy(shipped.filePath(name), m_folder.filePath(name)));
    QFile user(m_folder.filePath(QStringLiteral("user.toml")));
    ASSERT_TRUE(user.open(QIODevice::WriteOnly | QIODevice::Truncate));
    user.write("variant_code = 100\nquery_compact_interval = 0\n");
    user.close();

    std::vector<std::string> errors;
    auto client = runtime::CClientRuntime::open({m_folder.path().toStdString(), database, std::string()}, errors);
    ASSERT_TRUE(client) << errors.front();
    client->setCounterLatency(0);
    m_window = std::make_unique<CMainWindow>();
    m_window->show();
    m_window->startClient(std::move(client));
    m_combo = m_window->panel()->findChild<GW::CComboBox*>();
    m_refresh = m_window->panel()->findChild<VN::CCountDownButton*>();
    m_table = m_window->panel()->findChild<VN::CCompactsTable*>();
    // Five credit accounts log in by themselves; the sixth is logged out, the seventh trades ordinary stock.
    ASSERT_TRUE(waitUntil([this] { return m_combo->count() == 5; }));
    choose(EMPTY);
  }

  /// Chooses another account and lets the table empty itself, which it announces like an answer.
  void choose(const char* key) {
    if (m_combo->currentKey() == QLatin1String(key)) return;
    const int index = m_combo->findData(QString::fromLatin1(key));
    ASSERT_GE(index, 0);
    kit::CSignalCount emptied(m_table, &VN::CCompactsTable::sigQueryData);
    m_combo->setCurrentIndex(index);
    ASSERT_TRUE(waitUntil([&emptied] { return emptied.count() > 0; }));
  }
  void refresh(int rows) {
    QTest::mouseClick(m_refresh, Qt::LeftButton);
    ASSERT_TRUE(waitUntil([this, rows] { return m_combo->isEnabled() && m_table->rowCount() == rows; }));
  }

  CAmounts shown() const {
    CAmounts amounts;
    for (int row = 0; row < m_table->rowCount(); ++row) {
      const auto compact = boost::dynamic_pointer_cast<rdservice::CStkUnClosedCompacts>(m_table->getData(row));
      amounts[compact->getKey()] = compact->unpaidAmount;
    }
    return amounts;
  }
  static CAmounts stored(const char* key) {
    CAmounts amounts;
    const auto store = rdservice::TraderCenter::instance()->getDataCenter()->getAccountData(key);
    for (const rdservice::IDataPtr& data : store->getData(rdservice::RecordStkUnClosedCompacts)) {
      const auto compact = boost::dynamic_pointer_cast<rdservice::CStkUnClosedCompacts>(data);
      amounts[compact->getKey()] = compact->unpaidAmount;
    }
    return amounts;
  }
  /// Sum of a column of the book's file over one account.
  static double bookSum(const char* accountId, int column) {
    QFile file(QStringLiteral(SOURCE_DIR "/client/counter/sample_book/unclosed_compacts.csv"));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    double sum = 0;
    while (!file.atEnd()) {
      const QList<QByteArray> cells = file.readLine().split(',');
      if (cells[0] == accountId) sum += cells[column].toDouble();
    }
    return sum;
  }

  std::atomic<bool> m_giveUp{false};
  QTemporaryDir m_folder;
  std::unique_ptr<CMainWindow> m_window;
  GW::CComboBox* m_combo = nullptr;
  VN::CCountDownButton* m_refresh = nullptr;
  VN::CCompactsTable* m_table = nullptr;
};

TEST_F(DeskTest, ShowsTheBooksCompactsAndTheirChanges) {
  choose(LARGE);
  EXPECT_EQ(m_table->rowCount(), 0) << "an account change alone does not query in this configuration";
  refresh(5000);
  const CAmounts rows = shown();
  double sum = 0;
  for (const auto& [key, amount] : rows) sum += amount;
  EXPECT_NEAR(sum, bookSum("60010001", 8), 0.01);
  EXPECT_EQ(rows, stored(LARGE));

  m_window->client().changeSomeCompacts(LARGE, 50);
  ASSERT_TRUE(waitUntil([&] { return stored(LARGE) != rows; }));
  ASSERT_TRUE(waitUntil([&] { return shown() == stored(LARGE); }));
  EXPECT_EQ(m_table->rowCount(), 5000);

  choose(EMPTY);
  refresh(0);
}

TEST_F(DeskTest, ABookThatIsGivenUpLeavesTheDatabaseAsItWas) {
  const QString database = m_folder.filePath(QStringLiteral("other.db"));
  m_giveUp = true;
  const auto given =
      runtime::CClientRuntime::loadBook(SOURCE_DIR "/client/counter/sample_book", database.toStdString(), m_giveUp);
  EXPECT_FALSE(given.loaded);
  EXPECT_FALSE(QFile::exists(database));
}

TEST_F(DeskTest, ALateAnswerNeitherFreezesTheWindowNorShowsARowOfTheOldAccount) {
  choose(LARGE);
  m_window->client().setCounterLatency(LATE_MS);
  QTest::mouseClick(m_refresh, Qt::LeftButton);
  EXPECT_FALSE(m_combo->isEnabled());
  kit::CSignalCount announced(m_table, &VN::CCompactsTable::sigQueryData);
  m_combo->setCurrentIndex(m_combo->findData(QString::fromLatin1(EMPTY)));
  utils::CEventLoopMeter meter(5, nullptr);
  int wrongRows = 0;
  ASSERT_TRUE(waitUntil([&] {
    m_table->updateTable();
    wrongRows += m_table->rowCount();
    m_window->repaint();
    return announced.count() > 1;  // emptied, then the late answer dropped
  }));
  EXPECT_EQ(wrongRows, 0);
  EXPECT_EQ(m_table->rowCount(), 0);
  EXPECT_LT(meter.longestGap(), LATE_MS) << "the window waited for the counter";
}

TEST_F(DeskTest, ClosingWhileAccountsLogInIsSafe) {
  m_window->client().setCounterLatency(60000);
  VN::CTradeClient::instance()->setLogin("3.60010006", true);
  m_window.reset();
  EXPECT_EQ(rdservice::TraderCenter::instance(), nullptr);
}

TEST_F(DeskTest, ClosingWithAnAnswerOutIsSafe) {
  choose(LARGE);
  m_window->client().setCounterLatency(60000);
  QTest::mouseClick(m_refresh, Qt::LeftButton);
  m_window.reset();
  EXPECT_EQ(rdservice::TraderCenter::instance(), nullptr);
}

}  // namespace
