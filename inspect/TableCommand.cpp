#include "inspect/CommandWords.h"
#include "inspect/DeviceVersion.h"
#include "inspect/Figures.h"
#include "inspect/ProfileFacts.h"
#include "inspect/RowLint.h"
#include "inspect/Subcommand.h"
#include "inspect/UsageError.h"

#include <QJsonArray>

#include <algorithm>
#include <memory>

namespace inspect
{

namespace
{

QJsonObject facts_of(const TableFile& table, const std::vector<const TableRow*>& rows,
                     bool explained)
{
    QJsonArray profiles;
    for (const TableRow* row : rows) {
        profiles.append(json_of(*row, explained));
    }
    QJsonArray skipped;
    for (const SkippedLine& line : table.skipped) {
        skipped.append(QJsonObject{{QStringLiteral("line"), line.line},
                                   {QStringLiteral("columns"), line.columns},
                                   {QStringLiteral("kind"), name_of(line.kind)}});
    }
    return {{QStringLiteral("file"), table.path},
            {QStringLiteral("profiles"), profiles},
            {QStringLiteral("skipped"), skipped}};
}

QString skipped_text(const TableFile& table)
{
    QStringList parts;
    for (const auto kind : {SkippedLine::Kind::Blank, SkippedLine::Kind::Remark,
                            SkippedLine::Kind::Title, SkippedLine::Kind::BrokenRow}) {
        const auto count =
            std::count_if(table.skipped.begin(), table.skipped.end(),
                          [kind](const SkippedLine& line) { return line.kind == kind; });
        if (count != 0) {
            parts << QStringLiteral("%1 %2").arg(count).arg(name_of(kind));
        }
    }
    const QString sum = count_text(table.skipped.size(), "line") + QStringLiteral(" skipped");
    return parts.isEmpty() ? sum
                           : QStringLiteral("%1 (%2)").arg(sum, parts.join(QStringLiteral(", ")));
}

void print_table(TextPage& page, const TableFile& table, const std::vector<const TableRow*>& rows,
                 bool explained)
{
    if (!table.is_readable) {
        return;
    }
    page.paragraph(
        QStringLiteral("%1: %2, %3")
            .arg(table.path, count_text(table.rows.size(), "device row"), skipped_text(table)),
        0);
    for (const TableRow* row : rows) {
        print(page, *row);
        if (explained) {
            explain(page, *row);
        }
    }
}

/// The rows to show: all that can be used, or the one to explain.
std::vector<const TableRow*> rows_of(const TableFile& table, const std::optional<QString>& version)
{
    std::vector<const TableRow*> rows;
    if (version && table.is_readable) {
        rows.push_back(&row_for(table, *version));
        return rows;
    }
    for (const TableRow& row : table.rows) {
        if (row.profile != nullptr) {
            rows.push_back(&row);
        }
    }
    return rows;
}

void add_comparison(Report& report, const TableFile& table, const QString& path)
{
    const TableFile other = read_table(path);
    if (!other.is_readable) {
        report.problems.insert(report.problems.end(), other.problems.begin(), other.problems.end());
        report.incomplete = true;
        return;
    }
    const std::vector<Problem> found = compare_tables(table, other);
    report.problems.insert(report.problems.end(), found.begin(), found.end());
}

Report run(const CommandWords& words)
{
    if (words.files().size() > 1) {
        throw UsageError(QStringLiteral("table takes one file"));
    }
    const auto version = words.value("explain");
    const auto table = std::make_shared<const TableFile>(
        read_table(words.files().value(0, QStringLiteral("device.txt"))));
    const bool explained = version.has_value();
    const std::vector<const TableRow*> rows = rows_of(*table, version);
    Report report;
    report.problems = lint_table(*table);
    report.incomplete = !table->is_readable;
    report.facts = [table, rows, explained] {
        return facts_of(*table, rows, explained);
    };
    report.print_text = [table, rows, explained](TextPage& page) {
        print_table(page, *table, rows, explained);
    };
    if (const auto other = words.value("against"); other && table->is_readable) {
        add_comparison(report, *table, *other);
    }
    return report;
}

} // namespace

const Subcommand& table_command()
{
    static const Subcommand subcommand = {
        "table",
        "Check a device table and show what it says.",
        "Shows the devices of a table in human units and checks it: lines that the uploader "
        "skips,\n"
        "fields that do not convert, values that cannot work or are probably wrong.",
        "[file]",
        "The table; ./device.txt when none is named.",
        {
            {"explain", "version", "Show only the device of <version>, column by column."},
            {"against", "table", "Report what <table> says differently about the same devices."},
        },
        run,
    };
    return subcommand;
}

} // namespace inspect
