#pragma once

#include "gw/CEventDeliverer.h"
#include "host_api.h"

#include <QDate>
#include <QIntValidator>
#include <QLineEdit>
#include <QWidget>

#include <memory>

namespace GW {

/// Whole numbers of a range from 0 upwards, ends included, in plain digits whatever the locale: nothing else can be
/// typed. Numbers below the range can only be typed on, and like an empty field they are not accepted.
class HOST_API CIntValidator : public QIntValidator {
  Q_OBJECT
 public:
  CIntValidator(int minimum, int maximum, QObject* parent = nullptr);
  ~CIntValidator() override;

  State validate(QString& text, int& place) const override;
};

/// A line of text; reports EventLineEditChanged with its id when the user's typing has changed it. GUI thread.
class HOST_API CLineEdit : public QLineEdit, public CEventDeliverer {
  Q_OBJECT
 public:
  CLineEdit(int id, QWidget* parent);
  ~CLineEdit() override;

  int id() const;

 private:
  int m_id;
};

/// A date, typed as yyyy-MM-dd or chosen in a calendar that opens below. Reports EventLineEditChanged with its id when
/// the user has made it another valid date, or none. GUI thread.
class HOST_API CSoftCalendarLineEdit : public QWidget, public CEventDeliverer {
  Q_OBJECT
 public:
  CSoftCalendarLineEdit(int id, QWidget* parent);
  ~CSoftCalendarLineEdit() override;

  int id() const;
  /// Later dates are not taken: neither typed nor chosen.
  void setMaximumDate(const QDate& date);
  /// Whether the date can be typed; it can always be chosen.
  void setEditable(bool editable);
  /// As QLineEdit has it.
  void setInputMask(const QString& mask);
  void setDate(const QDate& date);
  /// Invalid while what stands in the field is no date, a half one, or later than the last one allowed.
  QDate date() const;
  /// The date as yyyy-MM-dd; empty when `date` is invalid.
  QString text() const;

 private:
  struct Private;
  std::unique_ptr<Private> m_d;
};

}  // namespace GW
