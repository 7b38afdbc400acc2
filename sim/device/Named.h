#pragma once

#include <QString>
#include <QStringList>

#include <algorithm>
#include <optional>

namespace sim
{

/// A value of an enumeration with its name for users and its meaning. Each enumeration has one
/// table of these, which must list all of its values.
template <typename Kind>
struct Named {
    Kind kind;
    const char* name;
    const char* help; ///< a sentence or its part, without a full stop
};

template <typename Table, typename Kind>
const char* name_in(const Table& table, Kind kind)
{
    return std::find_if(table.begin(), table.end(),
                        [kind](const auto& row) { return row.kind == kind; })
        ->name;
}

template <typename Table>
auto find_in(const Table& table, const QString& name)
{
    const auto row = std::find_if(table.begin(), table.end(), [&name](const auto& candidate) {
        return name == QLatin1String(candidate.name);
    });
    return row == table.end() ? std::nullopt : std::optional(row->kind);
}

/// All names in the order of the table, separated by commas.
template <typename Table>
QString names_in(const Table& table)
{
    QStringList names;
    for (const auto& row : table) {
        names.append(QString::fromLatin1(row.name));
    }
    return names.join(QStringLiteral(", "));
}

/// The same with "or" before the last.
template <typename Table>
QString choice_of(const Table& table)
{
    QString names = names_in(table);
    const QString separator = QStringLiteral(", ");
    return names.replace(names.lastIndexOf(separator), separator.size(), QStringLiteral(" or "));
}

} // namespace sim
