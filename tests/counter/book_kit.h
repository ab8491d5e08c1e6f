#pragma once

#include "counter/CBookLoader.h"
#include "counter/CSqlCounter.h"
#include "rdservice/CStkUnClosedCompacts.h"
#include "rdservice/rdservice_enums.h"

#include <QTemporaryDir>

#include <functional>
#include <future>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace counter {

/// A folder of its own with a small correct book, and a place for a database.
class CTestBook {
 public:
  CTestBook();

  void setFile(const std::string& name, const std::string& text);
  /// The last word of relative dates is `today()`.
  static QDate today() { return QDate(2024, 3, 15); }
  CBookResult load() const;
  std::string path(const std::string& name) const;
  std::string database() const { return path("counter.db"); }
  /// Everything that the database holds, as text.
  std::string content() const;

 private:
  QTemporaryDir m_folder;
};

struct CReply {
  utils::RDError error;
  std::vector<rdservice::IDataPtr> records;
  bson::BSONObj extra{};
};

/// A counter on the database of a book, and what it reports. Waits end with a failed test instead of hanging.
class CTestCounter : public ICounterSink {
 public:
  explicit CTestCounter(CSqlCounterOptions options);
  ~CTestCounter() override;

  CSqlCounter counter;

  CReply ask(const rdservice::IDataPtr& request);
  std::future<CReply> send(const rdservice::IDataPtr& request);
  /// Waits for the next report.
  std::vector<rdservice::IDataPtr> nextPush();
  std::string nextLogin();

  void onPush(const std::vector<rdservice::IDataPtr>& records) override;
  void onLoginStatus(const std::string& accountKey, rdservice::EBROKER_LOGIN_STATUS status,
                     const std::string& text) override;

 private:
  template <class T>
  class CQueue;
  std::unique_ptr<CQueue<std::vector<rdservice::IDataPtr>>> m_pushes;
  std::unique_ptr<CQueue<std::string>> m_logins;
};

/// The value, which must come within a time that only a fault exceeds.
CReply get(std::future<CReply> reply);

rdservice::IDataPtr accountsRequest();
rdservice::IDataPtr instrumentsRequest();
rdservice::IDataPtr loginRequest(const std::string& accountKey, bool login = true);
rdservice::IDataPtr compactsRequest(const std::string& accountKey, int compactType = ' ',
                                    const std::string& position = {}, int count = 0,
                                    int dataType = rdservice::RecordStkUnClosedCompacts);
rdservice::IDataPtr dataRequest(const std::string& accountKey, int dataType);

/// The numbers of the compacts, closed or not, in order, with a blank between.
std::string compactNumbers(const std::vector<rdservice::IDataPtr>& records);

/// A cell of a CSV file, in quotes when it must be.
std::string csvCell(const std::string& text);

}  // namespace counter
