#pragma once

#include "rdservice/IData.h"

namespace rdservice {

/// The counter's answer for one compact whose repay priority was set.
class HOST_API CCreditRepayPriorityResp : public IData {
 public:
  CCreditRepayPriorityResp();
  ~CCreditRepayPriorityResp() override;
  CCreditRepayPriorityResp(const CCreditRepayPriorityResp&);
  CCreditRepayPriorityResp& operator=(const CCreditRepayPriorityResp&);

  /// Field B and field A, joined by "____".
  std::string getKey() const override;
  int getBaseId() const override;
  IDataPtr copy() const override;
  const CStructDes& getStructDes() const override;
  static const CStructDes& structDes();

  std::string fieldA;              ///< compact number, as in the request's first list
  std::string fieldB;              ///< open date as text, as in the request's second list
  std::int32_t repayPriority = 0;  ///< 1 to 999999, 0 for none
};

using CCreditRepayPriorityRespPtr = boost::shared_ptr<CCreditRepayPriorityResp>;

}  // namespace rdservice
