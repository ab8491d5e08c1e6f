#pragma once

namespace counter {

/// A security of the sample book.
struct CSampleSecurity {
  const char* exchange;
  const char* code;
  const char* name;    ///< UTF-8
  const char* pinyin;  ///< initials of the name
  int price;           ///< about what it costs, in thousandths of a yuan
  bool fund;           ///< quoted in steps of 0.001 instead of 0.01 yuan
};

const CSampleSecurity* beginSampleSecurities();
const CSampleSecurity* endSampleSecurities();

}  // namespace counter
