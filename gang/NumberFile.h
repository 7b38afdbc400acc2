#pragma once

#include "gang/SharedFile.h"

#include <QString>

#include <functional>
#include <vector>

namespace gang
{

/// A number that has been given out.
struct GivenNumber {
    quint64 number = 0;
    QString to; ///< time, station and port
};

/// The counter of serial numbers, shared by any number of gangs. Lines of the file:
///
///     1000                                                    the next number is 1000
///     1000 2026-11-21T17:00:00.000Z station-3 /dev/ttyUSB0    1000 has been given out
///     # ...                                                   a remark
///
/// Numbers only grow. A line is on the disk before its number is used, so no number is ever given
/// twice; a line that a crash has cut short was never used, and is removed.
class NumberFile
{
public:
    /// Throws FileError if there is no such file: a new counter starts with a decision, not with a
    /// mistyped name.
    explicit NumberFile(const QString& path);

    /// The number that draw() would give now. Throws FileError.
    quint64 next();

    /// Gives out the next number, and lets nobody else have it. `accepts` may refuse the number by
    /// throwing; nothing is given out then. Throws FileError.
    quint64 draw(const QString& to, const std::function<void(quint64)>& accepts);

    /// All numbers given out so far. Throws FileError.
    std::vector<GivenNumber> given();

private:
    void catch_up();
    bool is_torn(const QByteArray& rest) const;
    void take_line(const QByteArray& line);
    [[noreturn]] void refuse_line(const char* reason) const;

    SharedFile m_file;
    qint64 m_read = 0; ///< bytes of the file that m_next and m_given know of
    int m_line = 0;
    bool m_has_next = false;
    quint64 m_next = 0;
    std::vector<GivenNumber> m_given;
};

} // namespace gang
