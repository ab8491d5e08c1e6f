#include "book_kit.h"

#include "counter/counter_errors.h"

#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

#include <gtest/gtest.h>

#include <unistd.h>

namespace counter {
namespace {

/// Runs statements on a database file, as another program would.
void runSql(const std::string& path, std::initializer_list<const char*> statements) {
  {
    auto database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("other program"));
    database.setDatabaseName(QString::fromStdString(path));
    ASSERT_TRUE(database.open());
    QSqlQuery query(database);
    for (const char* statement : statements)
      EXPECT_TRUE(query.exec(QLatin1String(statement))) << query.lastError().text().toStdString();
  }
  QSqlDatabase::removeDatabase(QStringLiteral("other program"));
}

QByteArray readAll(const std::string& path) {
  QFile file(QString::fromStdString(path));
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

TEST(UnusableDatabase, answersEveryRequestWithTheReason) {
  const struct {
    const char* name;
    const char* reason;
    void (*make)(const CTestBook& book);
  } CASES[] = {
      {"no/such/folder.db", "unable to open database file", [](const CTestBook&) {}},
      {"folder", "unable to open database file",
       [](const CTestBook& book) { QDir().mkpath(QString::fromStdString(book.path("folder"))); }},
      {"text.db", "not a database",
       [](const CTestBook& book) {
         QFile file(QString::fromStdString(book.path("text.db")));
         file.open(QIODevice::WriteOnly);
         file.write(QByteArray(5000, 'x'));
       }},
      {"other.db", "不是本程序的柜台数据库",
       [](const CTestBook& book) {
         runSql(book.path("other.db"), {"CREATE TABLE theirs (x)", "INSERT INTO theirs VALUES (1)"});
       }},
      {"counter.db", "数据库由其他版本的程序建立",
       [](const CTestBook& book) {
         EXPECT_TRUE(book.load().isLoaded());
         runSql(book.database(), {"PRAGMA user_version = 1"});
       }},
  };
  for (const auto& c : CASES) {
    CTestBook book;
    c.make(book);
    const auto before = readAll(book.path(c.name));
    CTestCounter client({book.path(c.name)});
    for (const auto& request : {accountsRequest(), loginRequest("3.6001"), compactsRequest("3.6001")}) {
      const auto error = client.ask(request).error;
      EXPECT_EQ(error.errorCode(), CounterDatabaseUnusable) << c.name;
      EXPECT_NE(error.errorMsg().find(c.reason), std::string::npos) << error.errorMsg();
    }
    client.counter.changeRandomCompacts("3.6001", 1, 1);
    client.counter.stop();
    EXPECT_TRUE(readAll(book.path(c.name)) == before) << c.name << " was changed";
  }
}

TEST(UnusableDatabase, aBookReplacesOldTablesButNotForeignOnes) {
  CTestBook book;
  ASSERT_TRUE(book.load().isLoaded());
  runSql(book.database(),
         {"DROP TABLE unclosed_compacts", "CREATE TABLE unclosed_compacts (old)", "PRAGMA user_version = 1"});
  EXPECT_EQ(book.load().errorText(), "");
  CTestCounter client({book.database()});
  client.ask(loginRequest("3.6001"));
  EXPECT_EQ(compactNumbers(client.ask(compactsRequest("3.6001")).records), "A1 A2 A3 A4");

  CTestBook foreign;
  runSql(foreign.database(), {"CREATE TABLE accounts (x)", "INSERT INTO accounts VALUES (1)"});
  const auto before = readAll(foreign.database());
  EXPECT_EQ(foreign.load().errorText(), foreign.database() + ": 不是本程序的柜台数据库\n");
  EXPECT_TRUE(readAll(foreign.database()) == before);
}

TEST(UnusableDatabase, aReadOnlyOneIsRefused) {
  if (geteuid() == 0) GTEST_SKIP() << "the superuser may write to every file";
  CTestBook book;
  ASSERT_TRUE(book.load().isLoaded());
  QFile::setPermissions(QString::fromStdString(book.database()), QFile::ReadOwner);
  CTestCounter client({book.database()});
  EXPECT_NE(client.ask(accountsRequest()).error.errorMsg().find("只读"), std::string::npos);
}

TEST(UnusableDatabase, aStatementThatFailsIsAnErrorWithItsText) {
  CTestBook book;
  ASSERT_TRUE(book.load().isLoaded());
  CTestCounter client({book.database()});
  client.ask(loginRequest("3.6001"));
  runSql(book.database(), {"DROP TABLE unclosed_compacts"});
  const auto error = client.ask(compactsRequest("3.6001")).error;
  EXPECT_EQ(error.errorCode(), CounterSqlFailed);
  EXPECT_NE(error.errorMsg().find("FROM \"unclosed_compacts\" WHERE"), std::string::npos) << error.errorMsg();
  EXPECT_NE(error.errorMsg().find("no such table"), std::string::npos) << error.errorMsg();
  client.counter.changeRandomCompacts("3.6001", 1, 1);
  EXPECT_EQ(client.ask(accountsRequest()).records.size(), 2U) << "the counter goes on";
}

}  // namespace
}  // namespace counter
