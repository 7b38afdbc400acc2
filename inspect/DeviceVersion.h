#pragma once

#include "inspect/TableFile.h"

namespace inspect
{

/// The row of the device that a user names: 0110, 0x0110 or v0110:. Throws UsageError when that is
/// no version, or when the table has no usable row for it.
const TableRow& row_for(const TableFile& table, const QString& version);

} // namespace inspect
