#include "gw/view/CCellEditor.h"

#include "gw/view/pixel_lines.h"

#include <QGuiApplication>
#include <QInputMethod>
#include <QLineEdit>
#include <QPainter>
#include <QPalette>
#include <QSpinBox>

namespace GW {

namespace {

constexpr const char* FRAME_COLOR = "clr_table_control_accent";

/// A spin box with a plain frame around both number and arrows; styles draw one that is too thick for a cell.
class CCellSpinBox : public QSpinBox {
 public:
  explicit CCellSpinBox(QWidget* parent) : QSpinBox(parent) {
    setFrame(false);
    QPalette colors = lineEdit()->palette();
    colors.setColor(QPalette::Base, Qt::transparent);  // it lies over the frame
    lineEdit()->setPalette(colors);
  }
  using QSpinBox::lineEdit;

 protected:
  void paintEvent(QPaintEvent* event) override {
    QSpinBox::paintEvent(event);
    QPainter painter(this);
    drawLineAround(painter, rect(), CUiResource::getColor(QString::fromLatin1(FRAME_COLOR)));
  }
};

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

void CCellEditor::onUiResourceChanged() {
  if (m_widget) setLook();
}

void CCellEditor::setLook() {
  // Before the palette: a style sheet that takes another's place brings the palette of the time before that back.
  if (m_spin == nullptr)
    m_line->setStyleSheet(QStringLiteral("QLineEdit { border: 1px solid %1; padding: 0px 3px; }")
                              .arg(CUiResource::getColor(QString::fromLatin1(FRAME_COLOR)).name()));
  QPalette colors = m_widget->palette();
  const auto set = [&colors](QPalette::ColorRole role, const char* key) {
    colors.setColor(role, CUiResource::getColor(QString::fromLatin1(key)));
  };
  set(QPalette::Base, "clr_table_control_background");
  set(QPalette::Text, "clr_table_text");
  m_widget->setPalette(colors);
  m_widget->setAutoFillBackground(true);
}

}  // namespace GW
