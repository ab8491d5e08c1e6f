#pragma once

namespace GW {

/// Flags of a table (`IBaseTable::setTableFlags`).
enum ETableFlag : int {
  TableFlagPaging = 0x2000000,         ///< a paging bar stands under the rows
  TableFlagHeaderCheckBox = 0x4000000  ///< headers may hold a check box
};

/// Buttons of the paging bar; they arrive as the first argument of EventButtonClicked.
enum EPagingButton : int { PagingFirst = 1, PagingPrevious = 2, PagingLast = 3, PagingNext = 4 };

/// What a simple paging bar shows beside first, previous and next (`IBaseTable::setSimplePagingQueryType`), added up.
enum EPagingPart : int { PagingPartPages = 1, PagingPartLast = 4, PagingPartTotal = 8 };

/// How `onFilterTrigger` filters.
enum EFilterType : int { FilterNone = 0, FilterValues = 1 };

}  // namespace GW
