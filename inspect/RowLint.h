#pragma once

#include "inspect/Problem.h"
#include "inspect/TableFile.h"
#include "profile/MemoryType.h"

#include <array>

namespace inspect
{

constexpr std::array<MemoryType, 2> memories = {MEMORY_FLASH, MEMORY_EEPROM};

/// "flash" or "EEPROM".
QString name_of(MemoryType memory);

/// A row under examination, and the problems found in it.
class RowLint
{
public:
    RowLint(const TableFile& table, const TableRow& row)
        : profile(*row.profile),
          m_table(table),
          m_row(row)
    {
    }

    /// Adds a problem of the column of this attribute.
    void add(Code code, Profile::Attr attribute, const QString& message,
             const QString& uploader = QString(), const QString& remedy = QString());

    /// The number as the table has it, before scaling.
    unsigned int raw(Profile::Attr attribute) const;
    /// Whether words, addresses and sizes of the memory allow operations on it at all.
    bool is_usable(MemoryType memory) const;

    const Profile& profile;
    std::vector<Problem> problems;

private:
    const TableFile& m_table;
    const TableRow& m_row;
};

// Each adds what it finds.
void check_figures_that_cannot_work(RowLint& lint);
void check_alignment(RowLint& lint);
void check_areas(RowLint& lint);
void check_values(RowLint& lint);

/// Everything that is wrong with a row that the uploader can use.
std::vector<Problem> lint_row(const TableFile& table, const TableRow& row);

/// Everything that is wrong with a table, in the order of its lines.
std::vector<Problem> lint_table(const TableFile& table);

/// The differences between two tables in the devices of the first.
std::vector<Problem> compare_tables(const TableFile& table, const TableFile& other);

} // namespace inspect
