#include "counter/CBookGenerator.h"

#include "counter/sample_appointments.h"
#include "counter/sample_changes.h"
#include "counter/sample_positions.h"
#include "counter/sample_securities.h"
#include "counter/sample_writing.h"
#include "rdservice/rdservice_enums.h"

#include <QDir>

#include <algorithm>

namespace counter {

namespace {

struct CSampleAccount {
  const char* id;
  int brokerType;
  int counterType;
  const char* name;
  const char* alias;
  int autoLogin;
  std::int64_t compacts;  ///< unclosed ones; BULK for the account that takes the number asked for
  std::int64_t closed;    ///< likewise
};

constexpr std::int64_t BULK = -1;

constexpr CSampleAccount ACCOUNTS[] = {
    {"60010001", rdservice::BrokerTypeCredit, 90, "张伟", "主账户", 1, BULK, BULK},
    {"60010002", rdservice::BrokerTypeCredit, 100, "王芳", "", 1, 320, 60},
    {"60010003", rdservice::BrokerTypeCredit, 102, "李静", "量化", 1, 86, 24},
    {"60010004", rdservice::BrokerTypeCredit, 200, "刘洋", "", 1, 0, 0},
    {"60010005", rdservice::BrokerTypeCreditInstitution, 200, "远山稳健一号", "机构户", 1, 48, 10},
    {"60010006", rdservice::BrokerTypeCredit, 90, "陈磊", "备用", 0, 64, 16},
    {"10020001", rdservice::BrokerTypeStock, 90, "张伟", "普通户", 1, 0, 0},
};

constexpr const char* COMPACT_HEADER =
    "account,exchange,code,compact_type,source,financing_volume,lending_volume,compact_amount,unpaid_amount,"
    "repaid_amount,interest_amount,fee_amount,penalty_amount,compact_no,open_date,expiry_date,renewal_flag,"
    "repay_priority,equity_compensation\n";
constexpr const char* CLOSED_HEADER =
    "account,exchange,code,compact_type,source,volume,compact_amount,repaid_amount,interest_amount,fee_amount,"
    "compact_no,open_date,close_date\n";

// Days.
constexpr std::int64_t TERM = 180;            ///< from opening to expiry, and what a renewal adds
constexpr std::int64_t HISTORY = 176;         ///< compacts were opened over so many days
constexpr std::int64_t CLOSED_HISTORY = 365;  ///< and those that are closed, closed over so many

/// Keep the files apart: none changes when the number of records in another does.
constexpr std::uint32_t CLOSED_SEED_OFFSET = 0x9E3779B9U;
constexpr std::uint32_t CHANGES_SEED_OFFSET = 0x85EBCA6BU;
constexpr std::uint32_t POSITIONS_SEED_OFFSET = 0xC2B2AE35U;
constexpr std::uint32_t QUOTES_SEED_OFFSET = 0x27D4EB2FU;
constexpr std::uint32_t APPOINTMENTS_SEED_OFFSET = 0x165667B1U;

// Shares of compacts, one in so many.
constexpr unsigned ONE_IN_RENEWED = 12;
constexpr unsigned ONE_IN_OVERDUE = 80;
constexpr unsigned ONE_IN_PRIORITISED = 15;
constexpr unsigned ONE_IN_SPECIAL = 5;

// Rates in ten thousandths: interest a year, penalty a day.
constexpr std::int64_t FINANCING_RATE = 835;
constexpr std::int64_t SPECIAL_FINANCING_RATE = 680;
constexpr std::int64_t LENDING_RATE = 1060;
constexpr std::int64_t PENALTY_RATE = 5;

const CSampleSecurity& pickSecurity(CSampleRandom& random) {
  const auto* const securities = beginSampleSecurities();
  return securities[random.between(0, endSampleSecurities() - securities - 1)];
}

std::int64_t pickLots(CSampleRandom& random, const CSampleSecurity& security) {
  return random.between(1, security.price > 100'000 ? 20 : 300);
}

/// Cents, near the security's price.
std::int64_t pickAmount(CSampleRandom& random, const CSampleSecurity& security, std::int64_t lots) {
  return lots * 100 * security.price / 10 * random.between(90, 110) / 100;
}

/// Cents of interest on `amount` cents; a day is counted at least.
std::int64_t interestOf(std::int64_t amount, std::int64_t days, bool isLending, bool isSpecial) {
  const auto rate = isLending ? LENDING_RATE : isSpecial ? SPECIAL_FINANCING_RATE : FINANCING_RATE;
  return amount * rate * std::max<std::int64_t>(days, 1) / (365 * 10'000);
}

std::int64_t feeOf(std::int64_t amount, bool isLending) { return isLending ? amount / 2000 : 0; }

/// Writes unclosed compact number `index` of `count`; the last of an account were opened today.
CSampleCompact addCompact(CSampleFile& file, CSampleRandom& random, const char* account, std::int64_t index,
                          std::int64_t count, int& priority) {
  const auto& security = pickSecurity(random);
  const bool isLending = random.between(1, 10) <= 3;
  const bool isSpecial = random.oneIn(ONE_IN_SPECIAL);
  const bool isRenewed = random.oneIn(ONE_IN_RENEWED);
  const bool isOverdue = !isRenewed && index < count / 2 && random.oneIn(ONE_IN_OVERDUE);

  auto age = (count - 1 - index) * HISTORY / count;
  if (isRenewed) age += TERM / 2;
  if (isOverdue) age = TERM + random.between(1, 20);
  const auto term = isRenewed ? 2 * TERM : TERM;

  const auto lots = pickLots(random, security);
  const auto repaidTenths = random.oneIn(3) ? random.between(1, 9) : 0;
  const auto amount = pickAmount(random, security, lots);
  const auto repaid = amount * repaidTenths / 10;
  const auto unpaid = amount - repaid;
  const auto openLots = std::max<std::int64_t>(1, lots * (10 - repaidTenths) / 10);
  const auto interest = interestOf(unpaid, age, isLending, isSpecial);
  const auto fee = feeOf(unpaid, isLending);
  const auto penalty = isOverdue ? unpaid * PENALTY_RATE * (age - TERM) / 10'000 : 0;
  const auto compensation = isLending && random.oneIn(8) ? openLots * 100 * 12 : 0;
  const bool isPrioritised = random.oneIn(ONE_IN_PRIORITISED);

  file.add("{},{},{},{},{},{},{},{},{},{},{},{},{},{:08},{},{},{},{},{}\n", account, security.exchange, security.code,
           isLending ? 1 : 0, isSpecial ? 1 : 0, isLending ? 0 : openLots * 100, isLending ? openLots * 100 : 0,
           yuan(amount), yuan(unpaid), yuan(repaid), yuan(interest), yuan(fee), yuan(penalty), 10'000'001 + index,
           dateWord(-age), dateWord(term - age), isRenewed ? 1 : 0, isPrioritised ? ++priority : 0, yuan(compensation));
  return {&security,      isLending, isRenewed, 10'000'001 + index, age,  lots * 100,
          openLots * 100, amount,    unpaid,    isSpecial,          term, interest};
}

/// Writes closed compact number `index` of `count`; the last of an account were closed today. Their numbers are below
/// those of the unclosed ones.
void addClosed(CSampleFile& file, CSampleRandom& random, const char* account, std::int64_t index, std::int64_t count) {
  const auto& security = pickSecurity(random);
  const bool isLending = random.between(1, 10) <= 3;
  const bool isSpecial = random.oneIn(ONE_IN_SPECIAL);
  const auto age = (count - 1 - index) * CLOSED_HISTORY / count;
  const auto held = random.between(1, TERM);
  const auto lots = pickLots(random, security);
  const auto amount = pickAmount(random, security, lots);
  file.add("{},{},{},{},{},{},{},{},{},{},{:08},{},{}\n", account, security.exchange, security.code, isLending ? 1 : 0,
           isSpecial ? 1 : 0, lots * 100, yuan(amount), yuan(amount),
           yuan(interestOf(amount, held, isLending, isSpecial)), yuan(feeOf(amount, isLending)), 1 + index,
           dateWord(-age - held), dateWord(-age));
}

std::string writeAccounts(const QString& path) {
  CSampleFile file(path);
  file.add("account_id,broker_type,counter_type,name,alias,auto_login\n");
  for (const auto& account : ACCOUNTS)
    file.add("{},{},{},{},{},{}\n", account.id, account.brokerType, account.counterType, account.name, account.alias,
             account.autoLogin);
  return file.finish();
}

std::string writeInstruments(const QString& path) {
  CSampleFile file(path);
  file.add("exchange,code,name,pinyin,price_tick\n");
  std::for_each(beginSampleSecurities(), endSampleSecurities(), [&](const CSampleSecurity& security) {
    file.add("{},{},{},{},{}\n", security.exchange, security.code, security.name, security.pinyin,
             security.fund ? "0.001" : "0.01");
  });
  return file.finish();
}

/// With their change details and appointments, and the positions that go with what is owed.
std::string writeCompacts(const QDir& directory, const CBookGeneratorOptions& options) {
  CSampleFile file(directory.filePath(QStringLiteral("unclosed_compacts.csv")));
  CSampleChanges changes(directory.filePath(QStringLiteral("change_details.csv")), options.seed + CHANGES_SEED_OFFSET);
  CSamplePositions positions(directory.filePath(QStringLiteral("positions.csv")), options.seed + POSITIONS_SEED_OFFSET);
  CSampleAppointments appointments(directory.filePath(QStringLiteral("appointments.csv")),
                                   options.seed + APPOINTMENTS_SEED_OFFSET);
  CSampleRandom random(options.seed);
  file.add("{}", COMPACT_HEADER);
  for (const auto& account : ACCOUNTS) {
    const auto count = account.compacts == BULK ? options.compacts : account.compacts;
    int priority = 0;
    CSampleLiabilities owed;
    changes.beginAccount(account.id);
    for (std::int64_t i = 0; i < count; ++i) {
      const auto compact = addCompact(file, random, account.id, i, count, priority);
      if (i >= count - options.changed) changes.add(compact);
      appointments.add(account.id, compact);
      if (compact.isLending) owed[compact.security] += compact.open;
    }
    positions.add(account.id, owed);
  }
  auto error = file.finish();
  if (error.empty()) error = changes.finish();
  if (error.empty()) error = appointments.finish();
  return error.empty() ? positions.finish() : error;
}

std::string writeClosed(const QString& path, const CBookGeneratorOptions& options) {
  CSampleFile file(path);
  CSampleRandom random(options.seed + CLOSED_SEED_OFFSET);
  file.add("{}", CLOSED_HEADER);
  for (const auto& account : ACCOUNTS) {
    const auto count = account.closed == BULK ? options.closed : account.closed;
    for (std::int64_t i = 0; i < count; ++i) addClosed(file, random, account.id, i, count);
  }
  return file.finish();
}

}  // namespace

std::string CBookGenerator::write(const std::string& folder) const {
  const QDir directory(QString::fromStdString(folder));
  if (!QDir().mkpath(directory.path())) return folder + ": the folder cannot be created";
  auto error = writeAccounts(directory.filePath(QStringLiteral("accounts.csv")));
  if (error.empty()) error = writeInstruments(directory.filePath(QStringLiteral("instruments.csv")));
  if (error.empty()) error = writeCompacts(directory, m_options);
  if (error.empty()) error = writeClosed(directory.filePath(QStringLiteral("closed_compacts.csv")), m_options);
  if (error.empty())
    error = writeSampleQuotes(directory.filePath(QStringLiteral("quotes.csv")), m_options.seed + QUOTES_SEED_OFFSET);
  return error;
}

}  // namespace counter
