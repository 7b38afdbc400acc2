#include "inspect/LogReader.h"

#include "inspect/Figures.h"

#include <algorithm>

namespace inspect
{

namespace
{

constexpr int prefix_length = 3;

bool is_digit(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

bool begins_like_an_entry(const QByteArray& text)
{
    const QByteArray prefix = text.left(prefix_length);
    return QByteArray("TX:").startsWith(prefix) || QByteArray("RX:").startsWith(prefix);
}

/// What is wrong with the digits of an entry; empty when they stand for bytes.
QString damage_of(const QByteArray& text)
{
    const auto other = std::find_if_not(text.begin() + prefix_length, text.end(), is_digit);
    if (other != text.end()) {
        return QStringLiteral("character %1 is no hexadecimal digit").arg(other - text.begin() + 1);
    }
    return text.size() % 2 == prefix_length % 2
               ? QString()
               : QStringLiteral("it has %1 digits, and a byte has two")
                     .arg(text.size() - prefix_length);
}

LogLine line_of(const QByteArray& text, qint64 number)
{
    if (!begins_like_an_entry(text)) {
        return {LogLine::Kind::Other, number, {}, {}};
    }
    if (text.size() < prefix_length) {
        return {LogLine::Kind::Damaged,
                number,
                {},
                QStringLiteral("it ends after %1")
                    .arg(count_text(static_cast<quint64>(text.size()), "character"))};
    }
    const QString damage = damage_of(text);
    if (!damage.isEmpty()) {
        return {LogLine::Kind::Damaged, number, {}, damage};
    }
    return {text.startsWith('T') ? LogLine::Kind::Sent : LogLine::Kind::Received,
            number,
            QByteArray::fromHex(text.mid(prefix_length)),
            {}};
}

} // namespace

std::optional<LogLine> LogReader::next()
{
    while (!m_file.atEnd()) {
        const QByteArray text = read_line();
        if (m_is_too_long) {
            return LogLine{begins_like_an_entry(text) ? LogLine::Kind::Damaged
                                                      : LogLine::Kind::Other,
                           m_number,
                           {},
                           QStringLiteral("it has more than %1").arg(size_text(longest_line))};
        }
        if (!text.isEmpty()) {
            return line_of(text, m_number);
        }
        if (m_file.error() != QFile::NoError) {
            break;
        }
    }
    return std::nullopt;
}

/// Without blanks at its end. Of a line that is too long, the beginning.
QByteArray LogReader::read_line()
{
    QByteArray text = m_file.readLine(longest_line);
    ++m_number;
    m_is_too_long = false;
    for (QByteArray rest = text; !rest.endsWith('\n') && !m_file.atEnd();) {
        rest = m_file.readLine(longest_line);
        m_is_too_long = true;
        if (rest.isEmpty()) {
            break;
        }
    }
    while (!text.isEmpty() && (text.endsWith('\n') || text.endsWith('\r') || text.endsWith(' '))) {
        text.chop(1);
    }
    return text;
}

} // namespace inspect
