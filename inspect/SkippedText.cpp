#include "inspect/SkippedText.h"

#include "inspect/Figures.h"

#include <QFile>

namespace inspect
{

namespace
{

/// Longer than any record. What is longer is none.
constexpr qint64 longest_line = 1024;

/// Digits of a record without data.
constexpr int shortest_record = 10;

/// A line of digits only, and as it has lost its colon, whatever its checksum.
bool is_record_without_colon(const QByteArray& text)
{
    intel_hex::Record record;
    const auto parsed = intel_hex::parse_record(text.begin(), text.end(), record);
    return text.size() >= shortest_record &&
           (parsed.outcome == intel_hex::RecordOutcome::Complete ||
            parsed.outcome == intel_hex::RecordOutcome::ChecksumMismatch) &&
           parsed.consumed == text.size();
}

class GapExaminer
{
public:
    explicit GapExaminer(const QString& path) : m_path(path) {}

    std::vector<Problem> examine(const std::vector<ImageWatch::Gap>& gaps);

private:
    void take(const QByteArray& line, const ImageWatch::Gap& gap);
    void report(Code code, const char* what, quint64 times,
                const intel_hex::TextPosition& position);

    QString m_path;
    qint64 m_line = 0;
    quint64 m_lost = 0;
    quint64 m_other = 0;
    intel_hex::TextPosition m_first_lost;
    intel_hex::TextPosition m_first_other;
    std::vector<Problem> m_problems;
};

std::vector<Problem> GapExaminer::examine(const std::vector<ImageWatch::Gap>& gaps)
{
    QFile file(m_path);
    auto gap = gaps.begin();
    if (gaps.empty() || !file.open(QIODevice::ReadOnly)) {
        return {};
    }
    bool continues = false; // a line too long to be read at once
    while (gap != gaps.end() && !file.atEnd()) {
        const QByteArray line = file.readLine(longest_line);
        if (!continues) {
            ++m_line;
            while (gap != gaps.end() && gap->from.line <= m_line) {
                take(line, *gap);
                if (gap->to.line > m_line) {
                    break;
                }
                ++gap;
            }
        }
        continues = !line.endsWith('\n');
    }
    report(Code::LostColon, " of digits that make up a record.", m_lost, m_first_lost);
    report(Code::TextBetween, " of text that is no record.", m_other, m_first_other);
    return m_problems;
}

/// The part of the line that belongs to the gap.
void GapExaminer::take(const QByteArray& line, const ImageWatch::Gap& gap)
{
    const qint64 begin = m_line == gap.from.line ? gap.from.column - 1 : 0;
    const qint64 end = m_line == gap.to.line ? gap.to.column - 1 : line.size();
    const QByteArray text =
        line.mid(static_cast<int>(begin), static_cast<int>(end - begin)).trimmed();
    if (text.isEmpty()) {
        return;
    }
    const bool lost = is_record_without_colon(text);
    quint64& times = lost ? m_lost : m_other;
    if (times++ == 0) {
        (lost ? m_first_lost : m_first_other) = {m_line, begin + 1};
    }
}

void GapExaminer::report(Code code, const char* what, quint64 times,
                         const intel_hex::TextPosition& position)
{
    if (times != 0) {
        m_problems.push_back({code,
                              count_text(times, "line") + QLatin1String(what),
                              {m_path, position.line, position.column},
                              {},
                              {}});
    }
}

} // namespace

std::vector<Problem> examine_gaps(const QString& path, const std::vector<ImageWatch::Gap>& gaps)
{
    return GapExaminer(path).examine(gaps);
}

} // namespace inspect
