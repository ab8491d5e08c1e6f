#pragma once

#include "rdservice/CInternedText.h"
#include "rdservice/CStructDes.h"
#include "rdservice/IData.h"

#include <boost/make_shared.hpp>

#include <cstdint>
#include <string>

/// A record with a field of every kind that sorts in its own way.
class CTestRecord : public rdservice::IData {
 public:
  enum EColumn : int { ColumnId, ColumnGroup, ColumnName, ColumnVolume, ColumnAmount, ColumnDate, ColumnCount };

  std::string getKey() const override { return id; }
  int getBaseId() const override { return 901; }
  rdservice::IDataPtr copy() const override { return boost::make_shared<CTestRecord>(*this); }
  const rdservice::CStructDes& getStructDes() const override { return structDes(); }
  static const rdservice::CStructDes& structDes();

  std::string id;
  char group = '0';
  rdservice::CInternedText name;
  std::int64_t volume = 0;
  double amount = 0;
  std::int32_t date = 0;     ///< its column is hidden by default
  std::uint64_t serial = 0;  ///< tells records of one key apart; no column
};

using CTestRecordPtr = boost::shared_ptr<CTestRecord>;

inline const CTestRecord& testRecord(const rdservice::IDataPtr& record) {
  return static_cast<const CTestRecord&>(*record);
}
