#pragma once

namespace GW {

/// Event numbers that controls and tables report to `handleEvent(type, p1, p2, text, data)`.
enum EWidgetEvent : int {
  EventButtonClicked = 5,      ///< p1: widget id (in a table: the paging button, 1 first, 2 previous, 3 last, 4 next)
  EventTextClicked = 9,        ///< p1: widget id of the clickable text
  EventLineEditBegin = 45,     ///< editing of a line edit cell begins; p1: column id, text: row key
  EventDialogCellEdited = 48,  ///< a cell of a plain table was edited; data: the cell
  EventHeaderCheckBox = 65,    ///< p1: column id, p2: 1 checked, 0 unchecked
  EventComboChanged = 72,      ///< p1: widget id; the current key of the combo box has really changed
  EventItemClicked = 96,       ///< p1: item index, p2: widget id
  EventLineEditChanged = 101,  ///< p1: widget id, text: the new text
  EventCheckChanged = 225,     ///< check state of a table cell changed; p1: column id, p2: state, text: row key
  EventCellEdited =
      229,  ///< a line edit cell was committed; p1: column id, text: typed text, data: IDataPtr* of the row
  EventSpinChanged = 234,       ///< a spin box cell changed; p1: column id, p2: value, text: row key
  EventSpinBegin = 235,         ///< editing of a spin box cell begins; p1: column id, text: row key
  EventRowDoubleClicked = 276,  ///< p1: row, text: row key

  EventPanelPosition = 1176,  ///< to the host; p2: side of the order panel (1 left, 2 right, 32 top, 64 bottom)
  EventCompactMode = 1309,    ///< to the host: the compact mode of the user configuration has changed
};

}  // namespace GW
