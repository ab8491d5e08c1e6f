#pragma once

#include "gw/CUiResource.h"
#include "gw/delegates/CDelegateControl.h"

#include <QPointer>
#include <QString>

#include <optional>

class QLineEdit;
class QSpinBox;

namespace GW {

/// The widget in which a cell's text is typed: a spin box that stays in its range, or a line. GUI thread.
class CCellEditor : public CUiResourceChangeHandler {
 public:
  /// `typed` takes the place of the text as if the user had typed it; when empty, the text is selected. The widget
  /// becomes a hidden child of `parent`.
  CCellEditor(const CDelegateControl& control, Qt::Alignment alignment, const QString& text, const QString& typed,
              QWidget* parent);
  /// Hides the widget at once and deletes it later, so that this can happen in the middle of its events.
  ~CCellEditor() override;
  CCellEditor(const CCellEditor&) = delete;
  CCellEditor& operator=(const CCellEditor&) = delete;

  /// Null when its parent has gone.
  QWidget* widget() const { return m_widget; }
  /// What the cell's text shall be; none when the user has left it as it was. A line that was typed back to what it
  /// was counts as changed.
  std::optional<QString> changedText() const;

  void onUiResourceChanged() override;

 private:
  void setLook();

  const QString m_text;
  bool m_isTyped = false;
  int m_value = 0;  ///< the spin box's first one
  QPointer<QWidget> m_widget;
  QSpinBox* m_spin = nullptr;  ///< null in a line
  QLineEdit* m_line = nullptr;
};

}  // namespace GW
