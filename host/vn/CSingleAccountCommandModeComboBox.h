#pragma once

#include "gw/controls.h"
#include "host_api.h"
#include "utils/CSubscription.h"

#include <string>

namespace VN {

/// How orders of one account leave: at once, or after the user has confirmed them. A choice is the account's, kept over
/// the client's runs and shown by every such box. GUI thread.
class HOST_API CSingleAccountCommandModeComboBox : public GW::CComboBox {
  Q_OBJECT
 public:
  CSingleAccountCommandModeComboBox(int id, QWidget* parent);
  ~CSingleAccountCommandModeComboBox() override;

  /// Shows the mode of that account; disabled for an empty key.
  void setAccount(const std::string& accountKey);
  const std::string& account() const;
  /// Whether the user is asked before an order of the account leaves.
  bool isConfirmed() const;

 private:
  void showMode();

  std::string m_account;
  utils::CSubscriptionPtr m_subscription;
};

}  // namespace VN
