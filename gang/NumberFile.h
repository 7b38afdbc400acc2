#pragma once

#include "gang/SharedFile.h"

#include <QString>

#include <functional>
#include <vector>

namespace gang
{

/// A serial number that has been given out.
struct GivenNumber {
    quint64 number = 0;
    QString to; ///< time, station and port
};

/// The counter of serial numbers, which any number of gangs may share. Lines of the file:
///
///     1000                                                    the next number is 1000
///     1000 2026-11-21T17:00:00.000Z station-3 /dev/ttyUSB0    1000 has been given out
///     # ...                                                   a comment
///
/// Numbers only increase. A line is on the disk before its number is used, so no number is given
/// out twice. A line cut short by a crash is removed; its number was never used.
class NumberFile
{
public:
    /// Throws FileError if the file does not exist: a mistyped name must not start a new counter.
    explicit NumberFile(const QString& path);

    /// Returns the number that draw() would give out now. Throws FileError.
    quint64 next();

    /// Gives out the next number and records `to` with it. `accepts` may refuse the number by
    /// throwing; then nothing is given out. Throws FileError.
    quint64 draw(const QString& to, const std::function<void(quint64)>& accepts);

    /// Returns all numbers given out so far. Throws FileError.
    std::vector<GivenNumber> given();

private:
    void catch_up();
    bool is_torn(const QByteArray& rest) const;
    void take_line(const QByteArray& line);
    [[noreturn]] void refuse_line(const char* reason) const;

    SharedFile m_file;
    qint64 m_read = 0; ///< bytes of the file that have been parsed
    int m_line = 0;
    bool m_has_next = false;
    quint64 m_next = 0;
    std::vector<GivenNumber> m_given;
};

} // namespace gang
