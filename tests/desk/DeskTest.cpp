// What the desk shows of the sample book, and how it ends.

#include "CDeskTest.h"

#include "CMainWindow.h"
#include "compacts/CCompactsPanel.h"
#include "compacts/tables/CCompactsTable.h"
#include "gw/controls.h"
#include "kit/CSignalCount.h"
#include "rdservice/TraderCenter.h"
#include "runtime/CClientRuntime.h"
#include "utils/CEventLoopMeter.h"
#include "utils/CLogCenter.h"
#include "vn/CCountDownButton.h"
#include "vn/CTradeClient.h"

#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QTest>

#include <atomic>

namespace {

using kit::waitUntil;

constexpr int LATE_MS = 1500;

/// Sum of a column of the book's file over one account.
double bookSum(const char* accountId, int column) {
  QFile file(QStringLiteral(SOURCE_DIR "/client/counter/sample_book/unclosed_compacts.csv"));
  EXPECT_TRUE(file.open(QIODevice::ReadOnly));
  double sum = 0;
  while (!file.atEnd()) {
    const QList<QByteArray> cells = file.readLine().split(',');
    if (cells[0] == accountId) sum += cells[column].toDouble();
  }
  return sum;
}

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

TEST_F(DeskTest, TheStatusBarTellsOfPushesThatWaitAndOfFramesMissed) {
  choose(LARGE);
  refresh(5000);
  const auto* pushes = m_window->findChild<QLabel*>(QStringLiteral("pushLoad"));
  const auto* gap = m_window->findChild<QLabel*>(QStringLiteral("gap"));
  const auto isWhole = [](const QLabel* label) { return label->width() >= label->sizeHint().width(); };
  const auto shows = [isWhole](const QLabel* label, const char* text) {
    return waitUntil([&] { return label->text() == QString::fromUtf8(text) && isWhole(label); });
  };
  ASSERT_TRUE(shows(pushes, "推送积压 0, 合并 0"));
  {
    const kit::CStrandLatch latch;
    for (int turn = 0; turn < 2; ++turn) m_window->client().changeSomeCompacts(LARGE, 5000);
    EXPECT_TRUE(shows(pushes, "推送积压 5000, 合并 5000"));
  }
  EXPECT_TRUE(shows(pushes, "推送积压 0, 合并 5000"));
  delete m_window->panel();
  EXPECT_TRUE(shows(pushes, "推送积压 0, 合并 5000")) << "what a closed panel folded is folded";

  constexpr int STILL_MS = 200;
  m_window->restartMeter();
  QElapsedTimer still;
  still.start();
  while (still.elapsed() < STILL_MS) {
  }
  EXPECT_TRUE(waitUntil([&] {
    return gap->text().section(QStringLiteral("丢帧 "), 1).toInt() >= STILL_MS / 20 && isWhole(gap);
  })) << gap->text().toStdString();
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

TEST_F(DeskTest, AnAccountIsAskedForOnceUntilItLogsInAgain) {
  std::atomic<int> asked{0};
  const utils::CSubscriptionPtr lines = utils::CLogCenter::instance()->addListener([&](const utils::CLogLine& line) {
    if (line.message.find("account = 3.60010002, NEED request.") != std::string::npos) ++asked;
  });
  choose("3.60010002");
  ASSERT_TRUE(waitUntil([&] { return asked > 0; }));
  VN::CTradeClient* client = VN::CTradeClient::instance();
  const auto setLogin = [&](const char* account, bool login) {
    client->setLogin(account, login);
    ASSERT_TRUE(waitUntil([&] { return (m_combo->findData(QString::fromLatin1(account)) >= 0) == login; }));
    for (int turn = 0; turn < 3; ++turn) QCoreApplication::processEvents();  // what the box has told, queued
  };
  setLogin(LARGE, false);  // it stands before the chosen one
  setLogin(LARGE, true);
  m_window->panel()->refreshAccounts();
  for (int turn = 0; turn < 3; ++turn) QCoreApplication::processEvents();
  EXPECT_EQ(asked, 1);
  setLogin("3.60010002", false);
  setLogin("3.60010002", true);
  choose("3.60010002");
  EXPECT_TRUE(waitUntil([&] { return asked >= 2; }));
}

TEST_F(DeskTest, ClosingWhileAccountsLogInIsSafe) {
  m_window->client().setCounterLatency(60000);
  VN::CTradeClient::instance()->setLogin(LOGGED_OUT, true);
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
