#include "gw/CBaseWidget.h"

#include "utils/threads.h"

namespace GW {

CBaseWidget::CBaseWidget(QWidget* parent) : QWidget(parent), CEventDeliverer(this) { utils::assertGui(); }

CBaseWidget::~CBaseWidget() = default;

bool CBaseWidget::handleEvent(int type, int p1, int p2, QString text, void* eventData) {
  return deliverEvent(type, p1, p2, text, eventData);
}

void CBaseWidget::resizeEvent(QResizeEvent* event) { QWidget::resizeEvent(event); }

}  // namespace GW
