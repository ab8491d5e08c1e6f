#pragma once

#include "rdservice/CInternedText.h"
#include "rdservice/IData.h"

namespace rdservice {

/// A security listed at an exchange. The counter supplies it when the client starts.
class HOST_API CInstrumentInfo : public IData {
 public:
  CInstrumentInfo();
  ~CInstrumentInfo() override;
  CInstrumentInfo(const CInstrumentInfo&);
  CInstrumentInfo& operator=(const CInstrumentInfo&);

  /// The stock key: exchange and code without separator.
  std::string getKey() const override;
  int getBaseId() const override;
  IDataPtr copy() const override;
  const CStructDes& getStructDes() const override;
  static const CStructDes& structDes();

  CInternedText exchangeId;  ///< letters only
  CInternedText code;        ///< begins with a digit
  CInternedText name;
  std::string pinyin;       ///< initials of the name, upper case; may be empty
  double priceTick = 0.01;  ///< yuan
};

using CInstrumentInfoPtr = boost::shared_ptr<CInstrumentInfo>;

}  // namespace rdservice
