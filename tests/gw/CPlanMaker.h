#pragma once

#include "CNaiveTable.h"

#include <QString>

#include <random>
#include <string>

/// Random batches over a small set of keys, so that they meet often; the same for the same seed.
class CPlanMaker {
 public:
  explicit CPlanMaker(unsigned seed) : m_random(seed) {}

  /// 0 to `end` - 1.
  int below(int end) { return std::uniform_int_distribution<int>(0, end - 1)(m_random); }
  bool isOneIn(int count) { return below(count) == 0; }

  static constexpr int KEYS = 40;
  static std::string keyOf(int number);
  std::string key() { return keyOf(below(KEYS)); }
  CTestRecordPtr record();
  GW::CItemChange item();
  CBatchPlan plan();

 private:
  std::mt19937 m_random;
  std::uint64_t m_version = 100;
  std::uint64_t m_serial = 0;
};
