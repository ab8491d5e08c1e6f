#pragma once

namespace rdservice {

class CStructDes;

/// The fields of a record type (`ERecordType`) whose records can stand in a table; null for any other type. Any thread.
const CStructDes* structDesOf(int typeId);

}  // namespace rdservice
