// Any text as the parameter string of a compacts panel, in both layouts, on a running client.

#include "compacts/CCompactsPanel.h"
#include "gw/table_layout.h"
#include "kit/CTestRuntime.h"
#include "rdservice/CSetCreditRepayPriorityReq.h"

#include <QApplication>
#include <QStringList>

#include <cstdint>
#include <cstdlib>

namespace {

constexpr int INPUTS_PER_CLIENT = 500;
constexpr int RECORD_TYPES[] = {13916, 13915, 0, 0, 13907, 13917};

struct CClient {
  kit::CTestRuntime runtime;
  VN::CCompactsPanel independent{1, nullptr, 0};
  VN::CCompactsPanel inner{2, nullptr, 1};
};

/// A field that is a layout but for its checksum gets the right one: mutated text would never come past it.
QString withChecksums(const QString& param) {
  QStringList fields = param.split(u'|');
  for (int i = 0; i < fields.size() && i < 6; ++i)
    if (RECORD_TYPES[i] != 0) fields[i] = GW::sealLayout(fields[i]);
  return fields.join(u'|');
}

void check(VN::CCompactsPanel& panel, const QString& param, int fields) {
  panel.setParam(param);
  const QString kept = panel.param();
  if (kept.split(u'|').size() != fields) std::abort();
  panel.setParam(kept);
  if (panel.param() != kept) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  new QApplication(*argc, *argv);  // outlives the last client
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static CClient* client = nullptr;
  static int inputs = 0;
  if (client == nullptr || ++inputs % INPUTS_PER_CLIENT == 0) {
    delete client;
    client = new CClient;
  }
  const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size));
  for (const QString& param : {text, withChecksums(text)}) {
    check(client->independent, param, 6);
    check(client->inner, param, 2);
  }
  for (const rdservice::IDataPtr& request : client->runtime.counter().held())
    if (dynamic_cast<const rdservice::CSetCreditRepayPriorityReq*>(request.get()) != nullptr) std::abort();
  return 0;
}
