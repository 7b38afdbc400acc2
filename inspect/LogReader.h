#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

#include <optional>

namespace inspect
{

/// A line of a frame log that is not blank. The format of a log, which app/Console writes:
///
///     TX:555500000004     a frame that was sent
///     RX:555502fe04       what was received
///
/// in hexadecimal digits without blanks. Each entry begins with a newline, so the last line has
/// none at its end.
struct LogLine {
    enum class Kind {
        Sent,
        Received,
        Damaged, ///< begins like an entry, or like the beginning of one, and is none
        Other,
    };

    Kind kind;
    qint64 number;    ///< from 1
    QByteArray frame; ///< of an entry
    QString damage;   ///< of a damaged line: what is wrong with it
};

/// Reads a log line by line. Memory and time are bounded by the length of a line, whatever the file
/// holds.
class LogReader
{
public:
    /// Characters of a line. What the uploader sends, and what it accepts, is far shorter.
    static constexpr qint64 longest_line = 1024 * 1024;

    /// Reads from the open file's current position. The file must outlive the reader.
    explicit LogReader(QFile& file) : m_file(file) {}

    /// The next line that is not blank; nothing at the end of the file or when reading fails.
    std::optional<LogLine> next();

private:
    QByteArray read_line();

    QFile& m_file;
    qint64 m_number = 0;
    bool m_is_too_long = false;
};

} // namespace inspect
