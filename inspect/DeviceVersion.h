#pragma once

#include "inspect/TableFile.h"

namespace inspect
{

/// The row of the device that a user names: 0110, 0x0110 or v0110:. Throws UsageError when that is
/// not a version, or when the table has no usable row for it.
const TableRow& row_for(const TableFile& table, const QString& version);

/// The row of a table with a single device; null when it has several. Throws UsageError when it has
/// none.
const TableRow* single_row(const TableFile& table);

/// The same. Throws UsageError when there are several, too.
const TableRow& only_row(const TableFile& table);

/// A table to take a device from. Throws UsageError when it cannot be read.
TableFile readable_table(const QString& path);

} // namespace inspect
