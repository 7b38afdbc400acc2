#include "inspect/SkippedText.h"

#include "inspect/Figures.h"

#include <algorithm>

namespace inspect
{

namespace
{

/// No record is longer than this.
constexpr qint64 longest_line = 1024;

/// Digits of a record without data.
constexpr int shortest_record = 10;

/// Whether the line is a record without its colon: the right number of digits and nothing else. The
/// checksum may be wrong.
bool is_record_without_colon(const QByteArray& text)
{
    intel_hex::Record record;
    const auto parsed = intel_hex::parse_record(text.begin(), text.end(), record);
    return text.size() >= shortest_record &&
           (parsed.outcome == intel_hex::RecordOutcome::Complete ||
            parsed.outcome == intel_hex::RecordOutcome::ChecksumMismatch) &&
           parsed.consumed == text.size();
}

} // namespace

void SkippedText::take(const intel_hex::RecordReader& reader)
{
    qint64 rest = reader.text_length();
    if (rest == 0 || (!m_file.isOpen() && !m_file.open(QIODevice::ReadOnly)) ||
        !m_file.seek(reader.text_offset())) {
        return;
    }
    intel_hex::TextPosition position = reader.text_position();
    bool continues = false; // a line too long to be read at once
    while (rest > 0) {
        const QByteArray line = m_file.readLine(std::min(rest, longest_line));
        if (line.isEmpty()) {
            return;
        }
        if (!continues) {
            take_line(line, position);
        }
        continues = !line.endsWith('\n');
        position.line += continues ? 0 : 1;
        position.column = 1;
        rest -= line.size();
    }
}

/// Some tools end lines with a carriage return alone.
void SkippedText::take_line(const QByteArray& line, intel_hex::TextPosition position)
{
    for (const QByteArray& part : line.split('\r')) {
        const QByteArray text = part.trimmed();
        if (!text.isEmpty()) {
            Lines& lines = is_record_without_colon(text) ? m_lost : m_other;
            if (lines.times++ == 0) {
                lines.first = position;
            }
        }
        position.column += part.size() + 1;
    }
}

std::vector<Problem> SkippedText::problems() const
{
    std::vector<Problem> problems;
    add(problems, Code::LostColon, m_lost, " of digits that make up a record.");
    add(problems, Code::TextBetween, m_other, " of text that is no record.");
    return problems;
}

void SkippedText::add(std::vector<Problem>& problems, Code code, const Lines& lines,
                      const char* what) const
{
    if (lines.times != 0) {
        problems.push_back({code,
                            count_text(lines.times, "line") + QLatin1String(what),
                            {m_file.fileName(), lines.first.line, lines.first.column},
                            {},
                            {}});
    }
}

} // namespace inspect
