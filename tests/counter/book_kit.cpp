#include "book_kit.h"

#include "counter/CSqlConnection.h"
#include "counter/record_kinds.h"
#include "rdservice/CQueryCompactReqV2.h"
#include "rdservice/CQueryDataReq.h"
#include "rdservice/CStructDes.h"
#include "rdservice/rdservice_enums.h"
#include "rdservice/service_requests.h"

#include <QFile>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

#include <gtest/gtest.h>
#include <boost/make_shared.hpp>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>

namespace counter {

namespace {

/// Far beyond what any step takes.
constexpr auto PATIENCE = std::chrono::seconds(60);

}  // namespace

CTestBook::CTestBook() {
  setFile("accounts.csv",
          "account_id,broker_type,counter_type,name\n"
          "6001,3,90,张伟\n"
          "6002,3,102,\n");
  setFile("instruments.csv",
          "exchange,code,name\n"
          "SH,600000,浦发银行\n"
          "SZ,000001,平安银行\n");
  setFile("unclosed_compacts.csv",
          "account,exchange,code,compact_type,compact_no,open_date,unpaid_amount\n"
          "6001,SH,600000,0,A1,today-30,100\n"
          "6001,SZ,000001,1,A2,today,200\n"
          "6001,SZ,000001,0,A3,2024-03-01,300.5\n"
          "6002,SH,600000,0,B1,20240301,400\n"
          "6001,SH,600000,1,A4,today-1,500\n");
}

void CTestBook::setFile(const std::string& name, const std::string& text) {
  QFile file(QString::fromStdString(path(name)));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(text.data(), static_cast<qint64>(text.size()));
}

std::string CTestBook::path(const std::string& name) const {
  return m_folder.filePath(QString::fromStdString(name)).toStdString();
}

CBookResult CTestBook::load() const { return CBookLoader(m_folder.path().toStdString(), today()).load(database()); }

std::string CTestBook::content() const {
  const CSqlConnection connection(database());
  EXPECT_EQ(connection.error(), "");
  QString text;
  for (const auto& kind : recordKinds()) {
    auto query = connection.makeQuery();
    EXPECT_TRUE(query.exec(QStringLiteral("SELECT * FROM %1 ORDER BY rowid").arg(QLatin1String(kind.des.name()))));
    while (query.next()) {
      for (int i = 0; i < query.record().count(); ++i) text += query.value(i).toString() + QLatin1Char(',');
      text += QLatin1Char('\n');
    }
  }
  return text.toStdString();
}

template <class T>
class CTestCounter::CQueue {
 public:
  void put(T value) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_values.push_back(std::move(value));
    m_put.notify_one();
  }
  T take() {
    std::unique_lock<std::mutex> lock(m_mutex);
    if (!m_put.wait_for(lock, PATIENCE, [this] { return !m_values.empty(); })) {
      ADD_FAILURE() << "nothing was reported";
      return {};
    }
    T value = std::move(m_values.front());
    m_values.pop_front();
    return value;
  }

 private:
  std::mutex m_mutex;
  std::condition_variable m_put;
  std::deque<T> m_values;
};

CTestCounter::CTestCounter(CSqlCounterOptions options)
    : counter(std::move(options)),
      m_pushes(std::make_unique<CQueue<std::vector<rdservice::IDataPtr>>>()),
      m_logins(std::make_unique<CQueue<std::string>>()) {
  counter.start(*this);
}

CTestCounter::~CTestCounter() { counter.stop(); }

std::future<CReply> CTestCounter::send(const rdservice::IDataPtr& request) {
  auto promise = std::make_shared<std::promise<CReply>>();
  counter.request(request, [promise](const auto& error, const auto& records, const auto& extra) {
    promise->set_value({error, records, extra});
  });
  return promise->get_future();
}

CReply get(std::future<CReply> reply) {
  if (reply.wait_for(PATIENCE) == std::future_status::ready) return reply.get();
  ADD_FAILURE() << "no reply";
  return {};
}

CReply CTestCounter::ask(const rdservice::IDataPtr& request) { return get(send(request)); }
std::vector<rdservice::IDataPtr> CTestCounter::nextPush() { return m_pushes->take(); }
std::string CTestCounter::nextLogin() { return m_logins->take(); }
void CTestCounter::onPush(const std::vector<rdservice::IDataPtr>& records) { m_pushes->put(records); }
void CTestCounter::onLoginStatus(const std::string& accountKey, rdservice::EBROKER_LOGIN_STATUS status,
                                 const std::string& text) {
  m_logins->put(accountKey + " " + std::to_string(status) + text);
}

rdservice::IDataPtr accountsRequest() { return boost::make_shared<rdservice::CQueryAccountsReq>(); }
rdservice::IDataPtr instrumentsRequest() { return boost::make_shared<rdservice::CQueryInstrumentsReq>(); }

rdservice::IDataPtr loginRequest(const std::string& accountKey, bool login) {
  auto request = boost::make_shared<rdservice::CLoginReq>();
  request->accountKey = accountKey;
  request->login = login ? 1 : 0;
  return request;
}

rdservice::IDataPtr compactsRequest(const std::string& accountKey, int compactType, const std::string& position,
                                    int count, int dataType) {
  auto request = boost::make_shared<rdservice::CQueryCompactReqV2>();
  request->accountKey = accountKey;
  request->dataType = dataType;
  request->compactType = compactType;
  request->positionString = position;
  request->requestCount = count;
  return request;
}

rdservice::IDataPtr dataRequest(const std::string& accountKey, int dataType) {
  const auto dot = accountKey.find('.');
  auto request = boost::make_shared<rdservice::CQueryDataReq>();
  request->accountInfo = boost::make_shared<rdservice::CAccountInfo>();
  request->accountInfo->brokerType = std::stoi(accountKey.substr(0, dot));
  request->accountInfo->accountId = accountKey.substr(dot + 1);
  request->dataType = dataType;
  return request;
}

std::string compactNumbers(const std::vector<rdservice::IDataPtr>& records) {
  std::string numbers;
  for (const auto& record : records)
    numbers +=
        (numbers.empty() ? "" : " ") + record->getStructDes().fieldByName("compact_no")->get<std::string>(*record);
  return numbers;
}

std::string csvCell(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string cell = "\"";
  for (const char c : text) cell += c == '"' ? std::string("\"\"") : std::string(1, c);
  return cell + "\"";
}

}  // namespace counter
