#pragma once

#include "inspect/TableFile.h"

namespace inspect
{

/// What this column of this row says, in words and human units. The row must have a profile.
QString meaning_of(const TableRow& row, Profile::Attr attribute);

} // namespace inspect
