#include "CBenchClient.h"

#include "compacts/tables/CCompactsTable.h"
#include "counter/CBookGenerator.h"
#include "counter/CSqlCounter.h"
#include "gw/controls.h"
#include "rdservice/TraderCenter.h"
#include "runtime/CClientConfig.h"
#include "vn/CTradeClient.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QTimer>

#include <atomic>
#include <ctime>

namespace {

constexpr int LOOK_MS = 20;
constexpr int PATIENCE_MS = 60000;

/// The shipped configuration without waits, in the mode that is asked for.
bool writeConfig(const QString& folder, bool isPaged) {
  const QDir shipped(QStringLiteral(SOURCE_DIR "/client/desk/config"));
  const QStringList files = shipped.entryList(QDir::Files);
  for (const QString& name : files)
    if (!QFile::copy(shipped.filePath(name), folder + QLatin1Char('/') + name)) return false;
  const auto write = [&folder](const char* name, const QByteArray& text) {
    QFile file(folder + QLatin1Char('/') + QLatin1String(name));
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(text) == text.size();
  };
  return write("user.toml", "variant_code = 100\nquery_compact_interval = 0\n") &&
         (!isPaged || write("broker.toml", "[compacts]\nsplit_pages = true\nquery_by_type = true\n"));
}

}  // namespace

CBenchClient::CBenchClient(const COptions& options) { m_error = open(options); }

CBenchClient::~CBenchClient() {
  if (m_client) m_client->stop();
}

const char* CBenchClient::account() { return "3.60010001"; }

bool CBenchClient::wait(const std::function<bool()>& isDone) {
  QTimer looks;
  looks.start(LOOK_MS);
  QElapsedTimer timer;
  timer.start();
  while (!isDone()) {
    if (timer.elapsed() > PATIENCE_MS) return false;
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }
  return true;
}

double CBenchClient::processorMs() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

bool CBenchClient::isSameAsStored(const VN::CCompactsTable& table) {
  const auto store = rdservice::TraderCenter::instance()->getDataCenter()->getAccountData(account());
  for (int row = 0; row < table.rowCount(); ++row) {
    const rdservice::IDataPtr record = table.getData(row);
    if (record != store->getData(rdservice::RecordStkUnClosedCompacts, record->getKey())) return false;
  }
  return store->getData(rdservice::RecordStkUnClosedCompacts).size() == static_cast<std::size_t>(table.rowCount());
}

std::string CBenchClient::open(const COptions& options) {
  const std::string path = m_folder.path().toStdString();
  if (!m_folder.isValid() || !writeConfig(m_folder.path(), options.isPaged)) return "cannot write to " + path;
  const std::string error = counter::CBookGenerator({options.compacts, options.closed, 1}).write(path + "/book");
  if (!error.empty()) return error;
  const std::atomic<bool> giveUp{false};
  const auto book = runtime::CClientRuntime::loadBook(path + "/book", path + "/counter.db", giveUp);
  if (!book.loaded) return book.errorText;
  if (options.replace) {
    std::vector<utils::CConfigError> wrong;
    const runtime::CClientConfig config = runtime::readClientConfig(path, wrong);
    if (!wrong.empty()) return wrong.front().text();
    counter::CSqlCounterOptions embedded;
    embedded.databasePath = path + "/counter.db";
    m_client = std::make_unique<runtime::CClientRuntime>(
        config, options.replace(std::make_unique<counter::CSqlCounter>(embedded)), std::string());
  } else {
    std::vector<std::string> errors;
    m_client = runtime::CClientRuntime::open({path, path + "/counter.db", std::string()}, errors);
    if (!m_client) return errors.front();
    m_client->setCounterLatency(0);
  }
  m_panel = std::make_unique<VN::CCompactsPanel>(1, nullptr, 0);
  QObject::connect(VN::CTradeClient::instance(), &VN::CTradeClient::sigLoginStatus, m_panel.get(),
                   [panel = m_panel.get()](const rdservice::CAccountInfoPtr& info) { panel->requestAccount(*info); });
  m_client->start();
  m_panel->resize(1280, 760);
  m_panel->show();
  return showAccount();
}

std::string CBenchClient::showAccount() {
  auto& combo = *m_panel->findChild<GW::CComboBox*>();
  const QString key = QString::fromLatin1(account());
  if (!wait([&] { return combo.findData(key) >= 0; })) return "the account did not log in";
  combo.setCurrentIndex(combo.findData(key));
  m_panel->requestAccount(
      *rdservice::TraderCenter::instance()->getDataCenter()->getAccountData(account())->getAccountInfo());
  return std::string();
}
