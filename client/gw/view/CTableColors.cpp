#include "gw/view/CTableColors.h"

#include "gw/CUiResource.h"

namespace GW {

namespace {

struct CColorKey {
  QColor CTableColors::*color;
  const char* key;
};

constexpr CColorKey KEYS[] = {
    {&CTableColors::background, "clr_table_background"},
    {&CTableColors::alternate, "clr_table_alternate"},
    {&CTableColors::grid, "clr_table_grid"},
    {&CTableColors::text, "clr_table_text"},
    {&CTableColors::disabledText, "clr_table_disabled_text"},
    {&CTableColors::selected, "clr_table_selected"},
    {&CTableColors::current, "clr_table_current"},
    {&CTableColors::currentRow, "clr_table_current_row"},
    {&CTableColors::header, "clr_table_header"},
    {&CTableColors::headerHover, "clr_table_header_hover"},
    {&CTableColors::headerLine, "clr_table_header_line"},
    {&CTableColors::headerText, "clr_table_header_text"},
    {&CTableColors::mark, "clr_table_mark"},
    {&CTableColors::idleMark, "clr_table_idle_mark"},
    {&CTableColors::sums, "clr_table_sums"},
    {&CTableColors::sumsText, "clr_table_sums_text"},
};

}  // namespace

CTableColors CTableColors::load() {
  CTableColors colors;
  for (const CColorKey& row : KEYS) colors.*row.color = CUiResource::getColor(QString::fromLatin1(row.key));
  return colors;
}

}  // namespace GW
