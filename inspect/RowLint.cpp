#include "inspect/RowLint.h"

#include "device/GeometryChecks.h"
#include "profile/MemoryAttributes.h"

#include <algorithm>

namespace inspect
{

QString name_of(MemoryType memory)
{
    return memory == MEMORY_FLASH ? QStringLiteral("flash") : QStringLiteral("EEPROM");
}

void RowLint::add(Code code, Profile::Attr attribute, const QString& message,
                  const QString& uploader, const QString& remedy)
{
    problems.push_back({code,
                        QStringLiteral("%1: %2").arg(profile.name, message),
                        {m_table.path, m_row.line, attribute + 1},
                        uploader,
                        remedy});
}

unsigned int RowLint::raw(Profile::Attr attribute) const
{
    return m_row.raw(attribute);
}

bool RowLint::is_usable(MemoryType memory) const
{
    const bool has_faults =
        geometry::check_read(profile, memory).has_value() ||
        (memory == MEMORY_FLASH && (geometry::check_page(profile).has_value() ||
                                    geometry::check_page_step(profile).has_value()));
    return !has_faults && profile.get_min_address(memory) < profile.get_max_address(memory);
}

std::vector<Problem> lint_row(const TableFile& table, const TableRow& row)
{
    RowLint lint(table, row);
    check_figures_that_cannot_work(lint);
    check_alignment(lint);
    check_areas(lint);
    check_values(lint);
    std::stable_sort(
        lint.problems.begin(), lint.problems.end(),
        [](const Problem& a, const Problem& b) { return a.place.column < b.place.column; });
    return lint.problems;
}

std::vector<Problem> lint_table(const TableFile& table)
{
    std::vector<Problem> problems = table.problems;
    for (const TableRow& row : table.rows) {
        if (row.counts && row.profile != nullptr) {
            const std::vector<Problem> found = lint_row(table, row);
            problems.insert(problems.end(), found.begin(), found.end());
        }
    }
    std::stable_sort(problems.begin(), problems.end(), [](const Problem& a, const Problem& b) {
        return a.place.line < b.place.line;
    });
    return problems;
}

} // namespace inspect
