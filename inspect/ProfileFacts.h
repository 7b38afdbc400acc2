#pragma once

#include "inspect/TableFile.h"
#include "inspect/TextPage.h"

#include <QJsonObject>

namespace inspect
{

/// A device as JSON, and column by column if it is to be explained.
QJsonObject json_of(const TableRow& row, bool explained);

/// A device as text, in human-readable units. The row must have a profile.
void print(TextPage& page, const TableRow& row);

/// A device column by column: the text of the table, what it is converted to, what it stands for.
void explain(TextPage& page, const TableRow& row);

} // namespace inspect
