#pragma once

#include "inspect/TableFile.h"

namespace inspect
{

/// The meaning of this column of this row, in words and human-readable units. The row must have a
/// profile.
QString meaning_of(const TableRow& row, Profile::Attr attribute);

} // namespace inspect
