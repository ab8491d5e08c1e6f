#include "gw/line_edits.h"

#include "gw/widget_events.h"

#include "utils/threads.h"

namespace GW {

CLineEdit::CLineEdit(int id, QWidget* parent) : QLineEdit(parent), CEventDeliverer(this), m_id(id) {
  utils::assertGui();
  connect(this, &QLineEdit::textEdited, this,
          [this](const QString& text) { deliverEvent(EventLineEditChanged, m_id, 0, text, nullptr); });
}

CLineEdit::~CLineEdit() = default;

int CLineEdit::id() const { return m_id; }

}  // namespace GW
