#pragma once

#include <QString>

namespace GW {

/// Calls every CUiResourceChangeHandler. The client calls it after it has changed the application's font or palette.
/// GUI thread.
void notifyUiResourceChanged();

/// Style sheet of the small buttons in the client's colours, with a look of its own for a button whose property
/// "locked" is true.
QString smallButtonStyle();

}  // namespace GW
