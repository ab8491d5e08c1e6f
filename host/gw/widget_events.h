#pragma once

namespace GW {

/// Event numbers that controls and tables report to `handleEvent(type, p1, p2, text, data)`, on the GUI thread. The
/// receiver answers true when it has handled the event. Arguments that are not named are 0, empty or null; `data` is
/// good during the call. Nothing is reported when a program, not the user, changes a control, but for
/// EventComboChanged.
enum EWidgetEvent : int {
  /// A button was clicked. p1: its id. Of a table's paging bar: p1: `EPagingButton`; the bar shows the new page
  /// already.
  EventButtonClicked = 5,
  /// A clickable text was clicked. p1: its id.
  EventTextClicked = 9,
  /// The user begins to edit a line edit cell; no editor is there yet, and none opens when the receiver disables or
  /// hides the cell. p1: column id, text: row key.
  EventLineEditBegin = 45,
  /// The user has edited a cell of a plain table; it shows the text. text: the edited text, data: `CPlainCell*`.
  EventDialogCellEdited = 48,
  /// The check box in a column's header was clicked. p1: column id, p2: 1 checked, 0 unchecked.
  EventHeaderCheckBox = 65,
  /// The current key of a combo box has really changed, whoever changed it. p1: its id, p2: index (-1 none), text: key.
  EventComboChanged = 72,
  /// An item of a button with several items was chosen. p1: item index from 0, p2: the button's id.
  EventItemClicked = 96,
  /// The text of a line edit was changed by typing. p1: its id, text: the new text.
  EventLineEditChanged = 101,
  /// The user ticked or unticked a check box cell, or chose a radio button cell; the state is stored. p1: column id,
  /// p2: 1 checked, 0 unchecked, text: row key.
  EventCheckChanged = 225,
  /// The user has typed into a line edit cell and committed it, perhaps to the text that it had; the text is stored,
  /// and the delegate's `editor()` still exists. p1: column id, text: the typed text, data: `rdservice::IDataPtr*`, the
  /// row's record.
  EventCellEdited = 229,
  /// The user has changed the number of a spin box cell; it is stored as the cell's text. p1: column id, p2: the
  /// number, text: row key.
  EventSpinChanged = 234,
  /// The user begins to edit a spin box cell; no editor is there yet, and none opens when the receiver disables or
  /// hides the cell. p1: column id, text: row key.
  EventSpinBegin = 235,
  /// A row of a table was double-clicked. p1: displayed row, text: row key.
  EventRowDoubleClicked = 276,

  /// To the host: the order panel shall move. p2: its side (1 left, 2 right, 32 top, 64 bottom).
  EventPanelPosition = 1176,
  /// To the host: the compact mode of the user configuration has changed.
  EventCompactMode = 1309,
};

}  // namespace GW
