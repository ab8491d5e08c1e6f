#include "orderpanel/security_lookup.h"

#include "rdservice/TraderCenter.h"
#include "rdservice/stock_key.h"

namespace {

constexpr const char* NO_TEXT = "请输入证券代码。";
constexpr const char* UNKNOWN_TEXT = "没有代码为“%1”的证券。";
constexpr const char* SEVERAL_TEXT = "“%1”在多个交易所上市，请在代码前加上交易所，例如“%2”。";

QString keyOf(const rdservice::CInstrumentInfo& instrument) {
  return QString::fromStdString(rdservice::makeStockKey(instrument.exchangeId.str(), instrument.code.str()));
}

}  // namespace

CNamedSecurity findSecurity(const QString& text) {
  const QString name = text.trimmed().toUpper();
  if (name.isEmpty()) return {nullptr, QString::fromUtf8(NO_TEXT)};
  CNamedSecurity found{nullptr, QString::fromUtf8(UNKNOWN_TEXT).arg(name)};
  for (const auto& instrument : rdservice::TraderCenter::instance()->getDataCenter()->getInstruments()) {
    const QString key = keyOf(*instrument);
    if (key != name && QString::fromStdString(instrument->code.str()) != name) continue;
    if (found.instrument) return {nullptr, QString::fromUtf8(SEVERAL_TEXT).arg(name, keyOf(*found.instrument))};
    found = {instrument, QString()};
  }
  return found;
}

QString securityText(const std::string& exchangeId, const std::string& code) {
  const QString text = QString::fromStdString(code);
  const CNamedSecurity found = findSecurity(text);
  const bool isUnique = found.instrument && found.instrument->exchangeId == exchangeId;
  return isUnique ? text : QString::fromStdString(rdservice::makeStockKey(exchangeId, code));
}
