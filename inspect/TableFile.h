#pragma once

#include "inspect/Problem.h"
#include "profile/Profile.h"

#include <QStringList>

#include <memory>
#include <vector>

namespace inspect
{

/// A line of 25 columns that describes a device.
struct TableRow {
    qint64 line;
    QStringList fields;                ///< as the profile takes them: the version is "0x0110"
    std::unique_ptr<Profile> profile;  ///< null when the uploader could not use the row
    std::unique_ptr<Profile> unscaled; ///< the same with word sizes of 0, which scale nothing
    bool counts = true;                ///< false when a later row has the same version

    /// Four hexadecimal digits, as far as the field has them.
    QString version() const;
    /// What the table has in this column.
    QString text(Profile::Attr attribute) const;
    /// The number in this column as the table has it, before any scaling.
    unsigned int raw(Profile::Attr attribute) const;
};

/// A line that describes no device.
struct SkippedLine {
    enum class Kind { Blank, Remark, Title, BrokenRow };

    qint64 line;
    int columns;
    Kind kind;
};

QString name_of(SkippedLine::Kind kind);

/// A profile table with every line accounted for.
struct TableFile {
    QString path;
    bool is_readable = false;
    std::vector<TableRow> rows;
    std::vector<SkippedLine> skipped;
    /// What shows while the table is read: lines, fields, versions.
    std::vector<Problem> problems;

    /// The row that the uploader would take for this version (four hexadecimal digits); null when
    /// there is none.
    const TableRow* find(unsigned short version) const;
};

TableFile read_table(const QString& path);

/// A problem that keeps the uploader from using the table at all, whichever device is asked for.
bool ends_the_run(const Problem& problem);

} // namespace inspect
