#pragma once

#include "gw/view/CCellControls.h"
#include "gw/view/CCellEditor.h"
#include "gw/view/CControlPainter.h"
#include "gw/view/CHpfTableView.h"

#include "gw/delegates/CDelegateControl.h"
#include "gw/table/CSharedRows.h"

#include <QPointer>

#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace GW {

struct CCellControls::Private {
  /// A cell that is edited, from before its begin event until after the commit was reported.
  struct CEditing {
    int slot;  ///< -1: the row is gone
    int columnId;
    std::string key;
    CBaseTableColumnWidgetDelegate* delegate;  ///< only compared
    std::unique_ptr<CCellEditor> editor;       ///< null while the begin event is delivered
    bool isCommitting = false;
  };

  Private(CCellControls* controls, CHpfTableView& theView, CShownRows& theRows);

  /// Null when the column has none.
  CBaseTableColumnWidgetDelegate* delegate(int columnId) const;
  bool hasSlot(int slot) const;
  static bool isOpen(const CItemState& state);

  // These return false when whoever was told has destroyed the view: then nothing may be touched any more.
  bool store(const CDelegateControl& control, const CItemChange& item);
  bool deliver(int columnId, int type, int p2, const QString& text, void* data);
  bool commit();
  /// Stores and reports what was typed, unless the cell is gone meanwhile.
  bool report(const QString& text);

  /// Ticks or unticks; whether the cell can.
  bool check(int slot, int columnId);

  /// Commits what is open; what `slot` is called afterwards: -1 when its row is gone, none when the view is.
  std::optional<int> commitBefore(int slot);
  /// Row and column of the next cell as shown that is neither invisible nor disabled; -1 and -1 when there is none.
  std::pair<int, int> nextOpen(std::pair<int, int> cell, bool backwards) const;
  /// Commits, then opens the next cell in reading order that can be edited. The view may be gone afterwards.
  void step(bool backwards);
  /// Reports that editing begins and opens the editor. False, and nothing done, for a cell that cannot be edited; the
  /// view may be gone when it is true.
  bool begin(int slot, int columnId, const QString& typed);
  void open(const CDelegateControl& control, const QString& text, const QString& typed);
  /// Without commit. The view gets the focus that the editor had, unless it is its end (`isLast`).
  void close(bool isLast);
  void showEditor();
  void keyPressed(int key);
  /// Commits, now or soon; whether it was done now.
  bool focusLost();

  CCellControls* q;
  CHpfTableView& view;
  CShownRows& rows;
  mutable CControlPainter painter;
  std::optional<CEditing> editing;
  int targetSlot = -1;  ///< its row is followed while something else is committed
};

}  // namespace GW
