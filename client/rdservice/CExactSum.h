#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

namespace rdservice {

/// The exact sum of numbers that come and go: whole units and 1e-8 parts are added as integers, so that nothing is lost
/// however often.
class CExactSum {
 public:
  /// A million numbers of 64 bits do not fit into 64 bits.
  __extension__ using CUnits = __int128;
  static constexpr std::int64_t PARTS = 100000000;

  /// `sign`: 1 adds, -1 subtracts.
  void change(double amount, int sign) {
    if (amount == 0) return;  // most are
    constexpr double LIMIT = 1e15;
    if (!(std::fabs(amount) < LIMIT)) {
      m_unsummable += sign;
      return;
    }
    const auto units = static_cast<std::int64_t>(amount);
    const double parts = (amount - static_cast<double>(units)) * double{PARTS};
    m_units += sign * units;
    m_parts += sign * static_cast<std::int64_t>(parts < 0 ? parts - 0.5 : parts + 0.5);
    if (m_parts >= CARRY_AT || m_parts <= -CARRY_AT) carry();
  }
  void changeUnits(std::int64_t units, int sign) { m_units += CUnits{sign} * units; }

  /// False while a number is not finite or too large to be summed.
  bool isKnown() const { return m_unsummable == 0; }
  /// Whole units of the sum, towards zero; the rest in parts, of the same sign.
  CUnits units() const { return joined().m_units; }
  std::int64_t parts() const { return joined().m_parts; }
  /// Not a number while it is not known.
  double value() const {
    if (!isKnown()) return std::numeric_limits<double>::quiet_NaN();
    const CExactSum sum = joined();
    return static_cast<double>(sum.m_units) + static_cast<double>(sum.m_parts) / double{PARTS};
  }

 private:
  static constexpr std::int64_t CARRY_AT = PARTS * 1000000000;  ///< carrying is a division, so that it is seldom done

  void carry() {
    m_units += m_parts / PARTS;
    m_parts %= PARTS;
  }
  /// With units and parts of one sign.
  CExactSum joined() const {
    CExactSum sum = *this;
    sum.carry();
    if (sum.m_units > 0 && sum.m_parts < 0) {
      --sum.m_units;
      sum.m_parts += PARTS;
    } else if (sum.m_units < 0 && sum.m_parts > 0) {
      ++sum.m_units;
      sum.m_parts -= PARTS;
    }
    return sum;
  }

  CUnits m_units = 0;
  std::int64_t m_parts = 0;  ///< of 1e-8, carried into the units when they become many
  int m_unsummable = 0;
};

}  // namespace rdservice
