#pragma once

#include "rdservice/CInstrumentInfo.h"
#include "rdservice/CStkUnClosedCompacts.h"
#include "rdservice/rdservice_enums.h"

#include <QWidget>

#include <cstdint>
#include <functional>
#include <vector>

class QCheckBox;
class QDoubleSpinBox;
class QGridLayout;
class QLabel;
class QLineEdit;

namespace GW {
class CComboBox;
class CMediumNormalButton;
}  // namespace GW

/// What an order says, as fields for the user. Its boxes and its button report to the order panel around it. GUI
/// thread.
class COrderForm : public QWidget {
 public:
  explicit COrderForm(QWidget* parent);
  ~COrderForm() override;

  /// How many fields stand side by side.
  void setFieldsPerRow(int fields);

  /// The accounts to choose from; the panel fills them in.
  GW::CComboBox& accounts() const { return *m_accounts; }
  QCheckBox& selectColumn() const { return *m_selectColumn; }

  rdservice::EOperationType operation() const;
  /// An unknown one is ignored.
  void setOperation(int operation);
  /// What a direct repayment pays; it is asked for only there.
  rdservice::ERepayType repayType() const;
  void setRepayType(int repayType);
  /// Shows and hides what depends on the operation.
  void followOperation();

  /// The text that names the security; see `findSecurity`.
  QString securityText() const;
  /// Called after the user has typed into it.
  void onSecurityEdited(std::function<void()> edited);
  /// Yuan; 0 for the last price.
  double price() const;
  /// Shares; 0 when none were given.
  std::int64_t volume() const;
  void setVolume(std::int64_t shares);

  /// Names the compact's security, its number, and as many shares as the operation can concern.
  void fill(const rdservice::CStkUnClosedCompacts& compact);
  /// Number of the compact that the order is for; empty for none.
  void setCompactNumber(const QString& number);
  QString compactNumber() const;
  /// Shows the last price of the security, as it is now.
  void updatePrice();
  /// Yuan.
  void setEquityCompensation(double amount);
  /// How many accounts an order goes to; 0 is shown as one.
  void setAccountCount(int count);
  void focusSecurity();
  void focusVolume();

 private:
  struct CField {
    QLabel* label;  ///< null: the field tells by itself what it is
    QWidget* widget;
  };

  GW::CComboBox* makeCombo(int id);
  void addField(const char* name, QWidget* field);
  void arrange();
  void followSecurity();

  QGridLayout* m_grid;
  std::vector<CField> m_fields;
  int m_fieldsPerRow = 1;
  GW::CComboBox* m_accounts;
  GW::CComboBox* m_operations;
  GW::CComboBox* m_repayTypes;
  QLineEdit* m_security;
  QLabel* m_name;
  QDoubleSpinBox* m_price;
  QDoubleSpinBox* m_volume;  ///< of doubles, for more shares than an int holds
  QLineEdit* m_compact;
  QLabel* m_equity;
  QCheckBox* m_selectColumn;
  GW::CMediumNormalButton* m_place;
  rdservice::CInstrumentInfoPtr m_instrument;  ///< the security that the text names; null when it names none
};
