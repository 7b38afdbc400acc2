#include "inspect/DeviceVersion.h"

#include "inspect/UsageError.h"

#include <QRegularExpression>

namespace inspect
{

const TableRow& row_for(const TableFile& table, const QString& version)
{
    static const QRegularExpression form(QStringLiteral("^(?:0[xX]|v)?([0-9A-Fa-f]{1,4}):?$"));
    const QRegularExpressionMatch match = form.match(version);
    if (!match.hasMatch()) {
        throw UsageError(QStringLiteral("%1 is not a version; write up to four hexadecimal digits")
                             .arg(version));
    }
    const TableRow* row = table.find(match.captured(1).toUShort(nullptr, 16));
    if (row == nullptr) {
        throw UsageError(QStringLiteral("%1 has no usable row for version %2")
                             .arg(table.path, match.captured(1)));
    }
    return *row;
}

const TableRow* single_row(const TableFile& table)
{
    std::vector<const TableRow*> usable;
    for (const TableRow& row : table.rows) {
        if (row.profile != nullptr && row.counts) {
            usable.push_back(&row);
        }
    }
    if (usable.empty()) {
        throw UsageError(QStringLiteral("%1 has no usable device").arg(table.path));
    }
    return usable.size() == 1 ? usable.front() : nullptr;
}

const TableRow& only_row(const TableFile& table)
{
    const TableRow* only = single_row(table);
    if (only == nullptr) {
        throw UsageError(
            QStringLiteral("%1 has several devices: choose one with --device").arg(table.path));
    }
    return *only;
}

TableFile readable_table(const QString& path)
{
    TableFile table = read_table(path);
    if (!table.is_readable) {
        throw UsageError(QStringLiteral("cannot read the table %1: %2")
                             .arg(table.path, table.problems.front().message));
    }
    return table;
}

} // namespace inspect
