#pragma once

#include <QString>

class QPushButton;

namespace GW {

/// Calls every CUiResourceChangeHandler. The client calls it after it has changed the application's font or palette.
/// GUI thread.
void notifyUiResourceChanged();

enum class EUiTheme : unsigned char { Light, Dark };

/// Colours of the whole application; light at first. Calls `notifyUiResourceChanged`. GUI thread.
void setUiTheme(EUiTheme theme);
EUiTheme uiTheme();

/// The button becomes one of the small buttons in the theme's colours, also after a change of theme; it looks disabled
/// while its property "locked" is true.
void giveSmallButtonLook(QPushButton* button);

}  // namespace GW
