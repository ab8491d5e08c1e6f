#include "gw/controls.h"

#include "gw/widget_events.h"

#include "utils/threads.h"

#include <QHBoxLayout>
#include <QRadioButton>

#include <map>

namespace GW {

struct CRadioButtonGroup::Private {
  QHBoxLayout* layout;
  std::map<int, QRadioButton*> buttons;  ///< children
  int checkedId = -1;                    ///< as last known, so that a click on the checked button reports nothing
};

CRadioButtonGroup::CRadioButtonGroup(QWidget* parent)
    : QWidget(parent), CEventDeliverer(this), m_d(new Private{new QHBoxLayout(this), {}}) {
  utils::assertGui();
  m_d->layout->setContentsMargins(0, 0, 0, 0);
  m_d->layout->setSpacing(10);
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
}

CRadioButtonGroup::~CRadioButtonGroup() = default;

void CRadioButtonGroup::addButton(int id, const QString& text) {
  auto* const button = new QRadioButton(text, this);  // exclusive among its siblings
  m_d->buttons[id] = button;
  m_d->layout->addWidget(button);
  connect(button, &QRadioButton::clicked, this, [this, id] {
    if (m_d->checkedId == id) return;
    m_d->checkedId = id;
    deliverEvent(EventButtonClicked, id, 0, QString(), nullptr);
  });
}

QAbstractButton* CRadioButtonGroup::button(int id) const {
  const auto it = m_d->buttons.find(id);
  return it == m_d->buttons.end() ? nullptr : it->second;
}

int CRadioButtonGroup::checkedId() const {
  for (const auto& [id, button] : m_d->buttons) {
    if (button->isChecked()) return id;
  }
  return -1;
}

void CRadioButtonGroup::setChecked(int id) {
  const auto it = m_d->buttons.find(id);
  if (it == m_d->buttons.end()) return;
  it->second->setChecked(true);
  m_d->checkedId = id;
}

}  // namespace GW
