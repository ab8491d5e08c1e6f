#pragma once

#include "host_api.h"

#include <QList>
#include <QString>

#include <cstdint>

namespace VN {

/// One line of a basket.
struct CBasketStockData {
  QString market;  ///< exchange
  QString code;
  QString name;             ///< security name; may be empty
  int operation = 0;        ///< rdservice::EOperationType
  std::int64_t volume = 0;  ///< shares
  double amount = 0;        ///< yuan

  friend bool operator==(const CBasketStockData& a, const CBasketStockData& b) {
    return a.market == b.market && a.code == b.code && a.name == b.name && a.operation == b.operation &&
           a.volume == b.volume && a.amount == b.amount;
  }
};

/// A named list of securities to trade. GUI thread.
class HOST_API CBasketSetting {
 public:
  CBasketSetting();
  ~CBasketSetting();

  /// Empty until it is set.
  const QString& name() const { return m_name; }
  /// From then on the user configuration that handed the basket out keeps it; of two baskets with one name, this one.
  void setName(const QString& name);
  bool isNamed() const { return m_named != 0; }
  /// Whether its name was set later than the other's.
  bool isNamedAfter(const CBasketSetting& other) const { return m_named > other.m_named; }

  QList<CBasketStockData> stocks;

 private:
  QString m_name;
  std::uint64_t m_named = 0;  ///< rises with every name that is set; 0 for none
};

}  // namespace VN
