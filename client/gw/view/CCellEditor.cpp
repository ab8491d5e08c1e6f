#include "gw/view/CCellEditor.h"

#include "gw/CUiResource.h"

#include <QGuiApplication>
#include <QInputMethod>
#include <QLineEdit>
#include <QPalette>
#include <QSpinBox>

namespace GW {

namespace {

/// Its line, which QSpinBox keeps to its derived classes.
class CCellSpinBox : public QSpinBox {
 public:
  using QSpinBox::lineEdit;
  using QSpinBox::QSpinBox;
};

QString themeColor(const char* key) { return CUiResource::getColor(QString::fromLatin1(key)).name(); }

}  // namespace

CCellEditor::CCellEditor(const CDelegateControl& control, Qt::Alignment alignment, const QString& text,
                         const QString& typed, QWidget* parent)
    : m_text(text) {
  const Qt::Alignment horizontal = (alignment & Qt::AlignHorizontal_Mask) | Qt::AlignVCenter;
  if (control.kind == ECellControl::IntSpinBox) {
    auto* const spin = new CCellSpinBox(parent);
    m_widget = m_spin = spin;
    m_line = spin->lineEdit();
    spin->setRange(control.minimum, control.maximum);
    spin->setSingleStep(control.step);
    spin->setValue(text.toInt());
    spin->setAlignment(horizontal);
    m_value = spin->value();
  } else {
    m_widget = m_line = new QLineEdit(text, parent);
    m_line->setAlignment(horizontal);
  }
  setLook();
  QObject::connect(m_line, &QLineEdit::textEdited, m_widget, [this] { m_isTyped = true; });
  m_line->selectAll();
  if (!typed.isEmpty()) m_line->insert(typed);  // a spin box ignores what is no number
}

CCellEditor::~CCellEditor() {
  if (!m_widget) return;
  m_widget->disconnect();
  m_line->disconnect();
  m_widget->hide();
  m_widget->deleteLater();
}

std::optional<QString> CCellEditor::changedText() const {
  if (!m_widget) return std::nullopt;
  if (m_widget->hasFocus()) QGuiApplication::inputMethod()->commit();
  if (m_spin == nullptr) return m_isTyped ? std::optional(m_line->text()) : std::nullopt;
  m_spin->interpretText();
  const QString number = QString::number(m_spin->value());
  const bool isChanged = m_spin->value() != m_value || (m_isTyped && number != m_text);
  return isChanged ? std::optional(number) : std::nullopt;
}

void CCellEditor::setLook() {
  QPalette colors = m_widget->palette();
  const auto set = [&colors](QPalette::ColorRole role, const char* key) {
    colors.setColor(role, CUiResource::getColor(QString::fromLatin1(key)));
  };
  set(QPalette::Base, "clr_table_control_background");
  set(QPalette::Text, "clr_table_text");
  m_widget->setPalette(colors);
  m_widget->setAutoFillBackground(true);
  const QString padding = QString::fromLatin1(m_spin == nullptr ? "0px 3px" : "0px");
  m_widget->setStyleSheet(QStringLiteral("QLineEdit, QSpinBox { border: 1px solid %1; padding: %2; }")
                            .arg(themeColor("clr_table_control_accent"), padding));
}

}  // namespace GW
