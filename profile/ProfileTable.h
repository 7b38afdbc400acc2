#pragma once

#include <QStringList>

#include <optional>

class QIODevice;

/// A line of a profile table, by what it holds.
struct ProfileTableLine {
    enum class Kind {
        Remark,     ///< any number of fields except 25: blank lines, titles, notes
        Header,     ///< the row of column titles
        Row,        ///< one device
        Unparsable, ///< 25 fields, but the first is neither "Version" nor like "v0102:"
    };

    Kind kind;
    /// The fields of the line; those of a Row are ready for Profile, its version being "0x0102".
    QStringList fields;
};

/// Splits a line, given without its line end, into fields.
ProfileTableLine parse_profile_table_line(QString line);

/// Reads the next line of a table as UTF-8 text; invalid bytes become replacement characters.
/// A line ends at "\n", which goes together with one "\r" before it, or at the end of the device.
/// Nothing at the end of the device and when reading fails. Every call takes exactly one line, so
/// the number of calls is the number of the line.
std::optional<ProfileTableLine> read_profile_table_line(QIODevice& device);
