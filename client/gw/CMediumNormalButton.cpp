#include "gw/controls.h"

#include "gw/ui_resources.h"
#include "gw/widget_events.h"

#include "utils/threads.h"

namespace GW {

namespace {

constexpr QSize LEAST_SIZE(80, 26);

}  // namespace

CMediumNormalButton::CMediumNormalButton(int id, const QString& text, QWidget* parent)
    : QPushButton(text, parent), CEventDeliverer(this), m_id(id) {
  utils::assertGui();
  giveSmallButtonLook(this);
  setMinimumSize(LEAST_SIZE);
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  connect(this, &QPushButton::clicked, this, [this] { deliverEvent(EventButtonClicked, m_id, 0, QString(), nullptr); });
}

CMediumNormalButton::~CMediumNormalButton() = default;

int CMediumNormalButton::id() const { return m_id; }

}  // namespace GW
