// The shipped module: what it exports, and that it works on the shipped client library.

#include "appointment/CQueryAppointmentInfoPanel.h"
#include "compacts/CCompactsPanel.h"
#include "runtime/CClientRuntime.h"
#include "vn/CTradeClient.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <memory>

namespace {

TEST(Module, ExportsTheEntryClassesAndNothingElse) {
  if (std::string(PC_SANITIZE) != "") GTEST_SKIP() << "sanitizers add symbols of their own";
  QProcess nm;
  nm.start(QStringLiteral("nm"),
           {QStringLiteral("-DC"), QStringLiteral("--defined-only"), QStringLiteral(MODULE_FILE)});
  ASSERT_TRUE(nm.waitForFinished()) << "nm did not run";
  constexpr const char* CONSTRUCTORS[] = {"VN::CCompactsPanel::CCompactsPanel(int, QWidget*, int)",
                                          "VN::CQueryAppointmentInfoPanel::CQueryAppointmentInfoPanel(int, QWidget*)"};
  bool hasEntry[] = {false, false};
  const QStringList lines = QString::fromUtf8(nm.readAllStandardOutput()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
  for (const QString& line : lines) {
    EXPECT_TRUE(line.contains(QStringLiteral("VN::CCompactsPanel")) ||
                line.contains(QStringLiteral("VN::CQueryAppointmentInfoPanel")))
        << line.toStdString();
    for (int i = 0; i < 2; ++i)
      if (line.contains(QLatin1String(CONSTRUCTORS[i]))) hasEntry[i] = true;
  }
  EXPECT_TRUE(hasEntry[0] && hasEntry[1]);
}

TEST(Module, PanelsRunOnTheClientLibrary) {
  QTemporaryDir folder;
  for (const char* name : {"broker.toml", "user.toml", "rights.toml", "counter.toml"}) {
    QFile file(folder.filePath(QLatin1String(name)));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  }
  runtime::CClientRuntime::CPaths paths;
  paths.configFolder = folder.path().toStdString();
  paths.database = folder.filePath(QStringLiteral("counter.db")).toStdString();
  std::vector<std::string> errors;
  const auto client = runtime::CClientRuntime::open(paths, errors);
  ASSERT_TRUE(client) << (errors.empty() ? std::string() : errors.front());
  const auto panel = std::make_unique<VN::CCompactsPanel>(1, nullptr, 0);
  // One meta-object and one type information across the libraries.
  const QObject* object = panel.get();
  EXPECT_EQ(dynamic_cast<const VN::CCompactsPanel*>(object), panel.get());
  EXPECT_EQ(qobject_cast<const VN::CTradeClient*>(VN::CTradeClient::instance()), VN::CTradeClient::instance());
  EXPECT_FALSE(panel->param().isEmpty());
  const VN::CQueryAppointmentInfoPanel appointments(2, nullptr);
  EXPECT_EQ(appointments.param(), QStringLiteral("||0"));
}

}  // namespace
