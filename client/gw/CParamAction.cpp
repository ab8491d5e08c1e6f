#include "gw/CParamAction.h"

namespace GW {

CParamAction::CParamAction(const QString& text, int value, const QString& param, QObject* parent)
    : QAction(text, parent), m_value(value), m_param(param) {
  connect(this, &QAction::triggered, this, [this](bool checked) { Q_EMIT triggered(checked, m_value, m_param); });
}

CParamAction::~CParamAction() = default;

}  // namespace GW
