#pragma once

namespace VN {

/// Widget ids of the compacts panel, as its controls report them.
enum ECompactsPanelId : int {
  IdSavePriority = 10000,
  IdOrderPriority = 10001,
  IdClearPriority = 10002,
  IdRefreshButton = 10003,
  IdImportPriority = 10004,
  IdExportPriority = 10005,
  IdRenewalLink = 10006,
  IdAccountCombo = 10007,
  IdCompactMode = 10009,
};

/// Views of the compacts panel: ids of the radio buttons, also kept in the parameter string.
enum ECompactsView : int {
  ViewUnclosed = 0,
  ViewClosed = 1,
  ViewChanges = 2,
  ViewStatistics = 3,
  ViewPriority = 4,  ///< the unclosed compacts, with the buttons of the repay priorities
};

/// Items of the compact-mode button.
enum ECompactMode : int { CompactModeLiabilities = 0, CompactModeAccounts = 1 };

/// How the panel is built: by itself, or inside an order panel.
enum ECompactsPanelMode : int { ModeIndependent = 0, ModeOrderPanel = 1 };

/// Where the parameter string keeps what.
enum ECompactsParamField : int {
  ParamUnclosedTable = 0,
  ParamClosedTable = 1,
  ParamView = 3,
  ParamChangeTable = 4,
  ParamStaticsTable = 5,
};

}  // namespace VN
