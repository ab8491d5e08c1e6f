#include "CLogCapture.h"

#include "utils/threads.h"

#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <stdexcept>
#include <thread>

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

std::vector<std::string> linesOf(const std::string& path) {
  std::vector<std::string> lines;
  std::ifstream stream(path);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

}  // namespace

TEST(CLogCenter, CentresOfOneProcessDoNotMix) {
  const QTemporaryDir folder;
  const std::string path = folder.filePath(QStringLiteral("日志.log")).toStdString();
  utils::logError({"none.cpp", "f()"}, "nobody listens");
  for (const char* text : {"第一", "second", "third"}) {
    CLogCapture log({path, false, utils::LogInfo});
    EXPECT_EQ(utils::CLogCenter::instance(), &log.center());
    utils::logInfo({"CFoo.cpp", "int n::CFoo::bar(int)", 12}, "{0} 合约 {1}", text, 3);
    utils::log(utils::LogDebug, {"CFoo.cpp", "f()"}, "below the level");
    EXPECT_THAT(log.take(), ElementsAre("20000 CFoo.cpp " + std::string(text) + " 合约 3"));
  }
  EXPECT_EQ(utils::CLogCenter::instance(), nullptr);
  EXPECT_THAT(linesOf(path), ElementsAre(EndsWith("CFoo.cpp:12 第一 合约 3"), EndsWith("CFoo.cpp:12 second 合约 3"),
                                         EndsWith("CFoo.cpp:12 third 合约 3")));
  EXPECT_THAT(linesOf(path)[0], HasSubstr(" INFO "));
}

TEST(CLogCenter, LargeFileIsSetAsideAtTheStart) {
  const QTemporaryDir folder;
  const std::string path = folder.filePath(QStringLiteral("a.log")).toStdString();
  const std::string old(16 * 1024 * 1024, 'x');
  for (const bool isLarge : {false, true}) {
    std::ofstream(path, std::ios::trunc) << old << (isLarge ? "y\n" : "");
    CLogCapture log({path, false, utils::LogInfo});
    utils::logInfo({"a.cpp", "f()"}, "new");
    EXPECT_EQ(linesOf(path + ".1").size(), isLarge ? 1U : 0U);
    EXPECT_EQ(linesOf(path)[0].size() < old.size(), isLarge);
  }
}

TEST(CLogCenter, SurvivesBadPatternsListenersAndPaths) {
  CLogCapture log({"/nonexistent/folder/x.log", false, utils::LogInfo});
  const auto bad = log.center().addListener([](const utils::CLogLine&) { throw std::runtime_error("listener"); });
  utils::logError({"a.cpp", "f()"}, "{0} of {1}", 1);
  utils::logError({"a.cpp", "f()"}, "{0", 1);
  utils::logInfo({"a.cpp", "f()"}, "{0}", std::string("{1} stays"));
  EXPECT_THAT(log.take(), ElementsAre(StartsWith("40000 a.cpp {0} of {1} [cannot be formatted: "),
                                      StartsWith("40000 a.cpp {0 [cannot be formatted: "), "20000 a.cpp {1} stays"));
}

TEST(CLogCenter, LinesOfSeveralThreadsAllArrive) {
  const QTemporaryDir folder;
  const std::string path = folder.filePath(QStringLiteral("a.log")).toStdString();
  CLogCapture log({path, false, utils::LogInfo});
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([t] {
      for (int i = 0; i < 200; ++i) utils::logInfo({"t.cpp", "f()"}, "thread {0} line {1}", t, i);
    });
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(log.take().size(), 800U);
  EXPECT_EQ(linesOf(path).size(), 800U);
}

TEST(Threads, OnlyTheApplicationsThreadIsTheGuiThread) {
  EXPECT_TRUE(utils::isGuiThread());
  std::thread([] { EXPECT_FALSE(utils::isGuiThread()); }).join();
}
