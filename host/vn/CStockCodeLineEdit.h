#pragma once

#include "gw/line_edits.h"
#include "host_api.h"

#include <memory>

namespace VN {

/// A security, looked up while the user types its code, name or pinyin initials. GUI thread.
class HOST_API CStockCodeLineEdit : public GW::CLineEdit {
  Q_OBJECT
 public:
  CStockCodeLineEdit(int id, QWidget* parent);
  ~CStockCodeLineEdit() override;

  /// Which securities are offered (rdservice::EKvTraderType); this client offers all of them in each.
  void setTradeType(int tradeType);
  /// A stock key or a code; one that no security has stands there as it is. The number is for the client, 0 here.
  void setStockCode(const QString& code, int reserved);
  /// The stock key of the security that stands there, or what was typed when it is none; may be empty.
  QString stockCode() const;

 private:
  struct Private;
  std::unique_ptr<Private> m_d;
};

}  // namespace VN
