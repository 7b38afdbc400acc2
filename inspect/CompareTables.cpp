#include "inspect/RowLint.h"

namespace inspect
{

namespace
{

bool agree(const TableRow& row, const TableRow& other, Profile::Attr attribute)
{
    return attribute == Profile::device_name
               ? row.fields.at(attribute) == other.fields.at(attribute)
               : row.raw(attribute) == other.raw(attribute);
}

void compare_rows(const TableFile& table, const TableRow& row, const TableFile& other,
                  const TableRow& other_row, std::vector<Problem>& problems)
{
    for (int i = 0; i < Profile::_enum_size; ++i) {
        if (agree(row, other_row, static_cast<Profile::Attr>(i))) {
            continue;
        }
        problems.push_back(
            {Code::DiffersFromOther,
             QStringLiteral("%1: %2 is %3; in %4, line %5, it is %6.")
                 .arg(row.profile->name, QLatin1String(meta_attr.valueToKey(i)), row.fields.at(i),
                      other.path, QString::number(other_row.line), other_row.fields.at(i)),
             {table.path, row.line, i + 1},
             {},
             {}});
    }
}

void miss(const TableFile& table, const TableRow& row, const TableFile& other,
          std::vector<Problem>& problems)
{
    problems.push_back({Code::MissingInOther,
                        QStringLiteral("%1 has no row for version %2 (%3).")
                            .arg(other.path, row.version(), row.profile->name),
                        {table.path, row.line, 1},
                        {},
                        {}});
}

} // namespace

std::vector<Problem> compare_tables(const TableFile& table, const TableFile& other)
{
    std::vector<Problem> problems;
    for (const TableRow& row : table.rows) {
        if (row.profile == nullptr || !row.counts) {
            continue;
        }
        const auto version = static_cast<unsigned short>(row.profile->attributes[0]);
        if (const TableRow* other_row = other.find(version)) {
            compare_rows(table, row, other, *other_row, problems);
        } else {
            miss(table, row, other, problems);
        }
    }
    for (const TableRow& row : other.rows) {
        if (row.profile != nullptr && row.counts &&
            table.find(static_cast<unsigned short>(row.profile->attributes[0])) == nullptr) {
            miss(other, row, table, problems);
        }
    }
    return problems;
}

} // namespace inspect
