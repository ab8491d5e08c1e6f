#pragma once

#include "gw/CEventDeliverer.h"
#include "host_api.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QPushButton>

#include <memory>

namespace GW {

/// A small text button; reports EventButtonClicked with its id. GUI thread.
class HOST_API CSmallNoNormalButton : public QPushButton, public CEventDeliverer {
  Q_OBJECT
 public:
  CSmallNoNormalButton(int id, const QString& text, QWidget* parent);
  ~CSmallNoNormalButton() override;

  int id() const;

 private:
  int m_id;
};

/// A text button of dialogs; reports EventButtonClicked with its id. As a dialog's default button it stands out. GUI
/// thread.
class HOST_API CMediumNormalButton : public QPushButton, public CEventDeliverer {
  Q_OBJECT
 public:
  CMediumNormalButton(int id, const QString& text, QWidget* parent);
  ~CMediumNormalButton() override;

  int id() const;

 private:
  int m_id;
};

/// A combo box whose items carry a key (role Qt::UserRole); reports EventComboChanged with its id whenever its current
/// key really changes, whoever changed it, also to none. GUI thread.
class HOST_API CComboBox : public QComboBox, public CEventDeliverer {
  Q_OBJECT
 public:
  CComboBox(int id, QWidget* parent);
  ~CComboBox() override;

  int id() const;
  /// Text key of the current item; empty when there is none.
  QString currentKey() const;

  /// Between these, changes are held back; `endRefill` reports once, if the current key differs from the one at
  /// `beginRefill`. They nest.
  void beginRefill();
  void endRefill();

 private:
  void reportIfChanged();

  struct Private;
  std::unique_ptr<Private> m_d;
};

/// Radio buttons in a row; reports EventButtonClicked with the id of the button that the user checked. GUI thread.
class HOST_API CRadioButtonGroup : public QWidget, public CEventDeliverer {
  Q_OBJECT
 public:
  explicit CRadioButtonGroup(QWidget* parent);
  ~CRadioButtonGroup() override;

  void addButton(int id, const QString& text);
  /// Null when there is no such button.
  QAbstractButton* button(int id) const;
  /// -1 when none is checked.
  int checkedId() const;
  /// Reports nothing. Ignored for an unknown id.
  void setChecked(int id);

 private:
  struct Private;
  std::unique_ptr<Private> m_d;
};

}  // namespace GW
