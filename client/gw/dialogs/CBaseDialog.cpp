#include "gw/CBaseDialog.h"

#include "utils/threads.h"

namespace GW {

CBaseDialog::CBaseDialog(QWidget* parent, Qt::WindowFlags flags) : QDialog(parent, flags) { utils::assertGui(); }

CBaseDialog::~CBaseDialog() = default;

bool CBaseDialog::handleEvent(int, int, int, QString, void*) { return false; }

}  // namespace GW
