#include "gw/CSimpleInputDialog.h"

#include "gw/containers.h"
#include "gw/controls.h"
#include "gw/widget_events.h"

#include <QLabel>
#include <QLineEdit>

namespace GW {

namespace {

constexpr const char* TEXT_OK = "确定";
constexpr const char* TEXT_CANCEL = "取消";

enum EButton : int { ButtonOk = 0, ButtonCancel = 1 };

constexpr int LEAST_WIDTH = 340;
constexpr int SPACING = 10;
constexpr int MARGIN = 15;

}  // namespace

struct CSimpleInputDialog::Private {
  QLineEdit* line;
};

CSimpleInputDialog::CSimpleInputDialog(const QString& title, const QString& label, QWidget* parent)
    : CCommonDialog(parent), m_d(new Private{new QLineEdit}) {
  setTitle(title);
  auto* const inner = new CWidgetList(Qt::Vertical, this);
  inner->setMargins(MARGIN, MARGIN, MARGIN, MARGIN - frameMargin());
  inner->setSpacing(SPACING);
  if (!label.isEmpty()) {
    auto* const above = new QLabel(label, inner);
    above->setTextFormat(Qt::PlainText);
    above->setBuddy(m_d->line);
    inner->addFixedWidget(above);
  }
  m_d->line->setAccessibleName(label.isEmpty() ? title : label);
  inner->addFixedWidget(m_d->line);

  auto* const buttons = new CWidgetList(Qt::Horizontal, inner);
  buttons->setSpacing(SPACING);
  buttons->addStretchWidget(new QWidget(buttons));
  auto* const ok = new CMediumNormalButton(ButtonOk, QString::fromUtf8(TEXT_OK), buttons);
  auto* const cancel = new CMediumNormalButton(ButtonCancel, QString::fromUtf8(TEXT_CANCEL), buttons);
  ok->setDefault(true);
  ok->setEnabled(false);
  buttons->addFixedWidget(ok);
  buttons->addFixedWidget(cancel);
  inner->addStretchWidget(new QWidget(inner));
  inner->addFixedWidget(buttons);
  setInnerWidget(inner);
  setMinimumWidth(LEAST_WIDTH);

  connect(m_d->line, &QLineEdit::textChanged, ok,
          [ok](const QString& text) { ok->setEnabled(!text.trimmed().isEmpty()); });
  m_d->line->setFocus();
}

CSimpleInputDialog::~CSimpleInputDialog() = default;

void CSimpleInputDialog::setText(const QString& text) {
  m_d->line->setText(text);
  m_d->line->selectAll();
}

QString CSimpleInputDialog::text() const { return m_d->line->text(); }

void CSimpleInputDialog::getInput(const std::function<void(const QString& text)>& confirmed) {
  QString entered;  // the dialog may be gone when exec() returns
  const auto connection = connect(this, &QDialog::accepted, this, [this, &entered] { entered = text(); });
  const bool isConfirmed = exec() == Accepted;
  disconnect(connection);
  if (isConfirmed && confirmed) confirmed(entered);
}

bool CSimpleInputDialog::handleEvent(int type, int p1, int p2, QString text, void* eventData) {
  if (type != EventButtonClicked) return CCommonDialog::handleEvent(type, p1, p2, text, eventData);
  if (p1 == ButtonOk) accept();
  if (p1 == ButtonCancel) reject();
  return true;
}

}  // namespace GW
