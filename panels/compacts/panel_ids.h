#pragma once

namespace VN {

/// Widget ids of the compacts panel, as its controls report them.
enum ECompactsPanelId : int {
  IdRefreshButton = 10003,
  IdAccountCombo = 10007,
};

/// Views of the compacts panel: ids of the radio buttons, also kept in the parameter string.
enum ECompactsView : int { ViewUnclosed = 0, ViewClosed = 1, ViewChanges = 2, ViewStatistics = 3 };

/// Where the parameter string keeps what.
enum ECompactsParamField : int {
  ParamUnclosedTable = 0,
  ParamClosedTable = 1,
  ParamView = 3,
  ParamChangeTable = 4,
  ParamStaticsTable = 5,
};

}  // namespace VN
