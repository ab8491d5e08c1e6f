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

  // These return false when a receiver has destroyed the view: then nothing may be touched any more.
  bool store(const CDelegateControl& control, CItemChange item);
  bool deliver(int columnId, int type, int p2, const QString& text, void* data);
  bool commit(bool keepFocus);
  /// Commits, then opens the next cell in reading order that can be edited.
  bool step(bool backwards);

  /// Ticks or unticks; whether the cell can.
  bool check(int slot, int columnId);

  bool isEditableAt(int row, int columnId) const;
  bool begin(int slot, int columnId, const QString& typed);
  void open(const CDelegateControl& control, const QString& text, const QString& typed);
  bool isEditorsRow(int slot) const;
  /// Without commit; the view gets the focus back if the editor had it.
  void close();
  bool keyPressed(int key);

  CCellControls* q;
  CHpfTableView& view;
  CShownRows& rows;
  mutable CControlPainter painter;
  std::optional<CEditing> editing;
  int targetSlot = -1;  ///< the cell that is opened after a commit
};

}  // namespace GW
