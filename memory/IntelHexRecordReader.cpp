#include "memory/IntelHexRecordReader.h"

#include "util/Platform.h"

#include <QFile>

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace intel_hex
{

namespace
{

/// The first such character in [begin, end), or null.
const char* find(const char* begin, const char* end, char character)
{
    return static_cast<const char*>(
        std::memchr(begin, character, static_cast<std::size_t>(end - begin)));
}

bool is_blank(char character)
{
    switch (character) {
    case ' ':
    case '\t':
    case '\r':
    case '\n':
        return true;
    default:
        return false;
    }
}

} // namespace

RecordReader::RecordReader(QFile& file) : m_file(file) {}

bool RecordReader::is_at_end()
{
    return !skip_blanks() && !m_has_failed;
}

bool RecordReader::skip_blanks()
{
    while (m_at != m_end || refill()) {
        if (!is_blank(*m_at)) {
            return true;
        }
        if (*m_at++ == '\n') {
            begin_line();
        }
    }
    return false;
}

ParsedRecord RecordReader::next(Record& record)
{
    if (m_at == m_end || *m_at != ':') {
        skip_blanks();
    }
    m_text = here();
    if (!find_colon()) {
        return {RecordOutcome::NoColon, 0};
    }
    m_record = here();
    ++m_at;
    ParsedRecord parsed = parse_record(m_at, m_end, record);
    while (is_cut_short(parsed, m_at, m_end) && refill()) {
        parsed = parse_record(m_at, m_end, record);
    }
    m_at += parsed.consumed;
    return parsed;
}

std::optional<char> RecordReader::peek() const
{
    return m_at != m_end ? std::optional<char>(*m_at) : std::nullopt;
}

/// Searches whole blocks at once: a large file that is not a HEX file is searched to its end.
bool RecordReader::find_colon()
{
    while (m_at != m_end || refill()) {
        if (*m_at == ':') { // nearly always: there is nothing between the records
            return true;
        }
        const char* const colon = find(m_at, m_end, ':');
        pass(colon != nullptr ? colon : m_end);
    }
    return false;
}

void RecordReader::pass(const char* to)
{
    while (const char* const newline = find(m_at, to, '\n')) {
        m_at = newline + 1;
        begin_line();
    }
    m_at = to;
}

void RecordReader::begin_line()
{
    ++m_line;
    m_line_offset = offset();
}

/// After the end of the file or an error, the file is not read again.
bool RecordReader::refill()
{
    if (!m_has_more) {
        return false;
    }
    m_block_offset += m_at - m_block.data();
    char* const rest_end = std::copy(m_at, m_end, m_block.data());
    const qint64 count =
        Platform::read_available(m_file, rest_end, m_block.data() + m_block.size() - rest_end);
    m_has_more = count > 0;
    m_has_failed = count < 0;
    m_at = m_block.data();
    m_end = rest_end + qMax<qint64>(count, 0);
    return m_has_more;
}

} // namespace intel_hex
