#pragma once

/// Twenty tables on the screen at once, each of which is pushed into. Prints what that costs beside one table alone.
void measureShownTables();

/// Twenty hidden panels on an account that the counter changes. Prints what a push costs the GUI thread for each panel
/// while it is hidden and while it is shown. False when a panel did not get what was pushed.
bool measureHiddenPanels();
