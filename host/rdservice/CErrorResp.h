#pragma once

#include "rdservice/IData.h"

namespace rdservice {

/// What the counter could not do of a request, beside or instead of the other records of its reply.
class HOST_API CErrorResp : public IData {
 public:
  CErrorResp();
  ~CErrorResp() override;
  CErrorResp(const CErrorResp&);
  CErrorResp& operator=(const CErrorResp&);

  /// Error code and text, joined by "____".
  std::string getKey() const override;
  int getBaseId() const override;
  IDataPtr copy() const override;
  const CStructDes& getStructDes() const override;
  static const CStructDes& structDes();

  std::int32_t errorCode = 0;  ///< the counter's; not 0
  std::string errorText;       ///< for users, UTF-8
};

using CErrorRespPtr = boost::shared_ptr<CErrorResp>;

}  // namespace rdservice
