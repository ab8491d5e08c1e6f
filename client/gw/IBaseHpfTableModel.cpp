#include "gw/IBaseHpfTableModel.h"

namespace GW {

IBaseHpfTableModel::IBaseHpfTableModel(QObject* parent) : QAbstractTableModel(parent) {}

IBaseHpfTableModel::~IBaseHpfTableModel() = default;

}  // namespace GW
