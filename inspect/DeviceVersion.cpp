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
        throw UsageError(
            QStringLiteral("%1 is no version; write up to four hexadecimal digits").arg(version));
    }
    const TableRow* row = table.find(match.captured(1).toUShort(nullptr, 16));
    if (row == nullptr) {
        throw UsageError(QStringLiteral("%1 has no usable row for version %2")
                             .arg(table.path, match.captured(1)));
    }
    return *row;
}

} // namespace inspect
