#pragma once

#include "gw/CCommonDialog.h"
#include "host_api.h"

#include <functional>
#include <memory>

namespace GW {

/// Asks for one line of text. The OK button waits for a text that is more than blanks. GUI thread.
class HOST_API CSimpleInputDialog : public CCommonDialog {
  Q_OBJECT

 public:
  /// Without a label when `label` is empty.
  CSimpleInputDialog(const QString& title, const QString& label, QWidget* parent);
  ~CSimpleInputDialog() override;

  /// What stands in the line at first, selected.
  void setText(const QString& text);
  QString text() const;

  /// Runs the dialog modally; when the user confirms, calls `confirmed` with the text as it was entered. The dialog is
  /// hidden by then, and gone if it has Qt::WA_DeleteOnClose. A dialog whose parent may go while it is open must be
  /// made with `new` and that attribute; it goes with its parent, and nothing is called.
  void getInput(const std::function<void(const QString& text)>& confirmed);

  bool handleEvent(int type, int p1, int p2, QString text, void* data) override;

 private:
  struct Private;
  std::unique_ptr<Private> m_d;
};

}  // namespace GW
