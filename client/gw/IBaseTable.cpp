#include "gw/IBaseTable.h"

namespace GW {

IBaseTable::IBaseTable(int tableId, QWidget* parent) : CBaseWidget(parent), m_tableId(tableId) {}

IBaseTable::~IBaseTable() = default;

int IBaseTable::getID() const { return m_tableId; }

}  // namespace GW
