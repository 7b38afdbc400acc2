#pragma once

#include "inspect/Problem.h"
#include "memory/IntelHexRecordReader.h"

#include <QFile>

#include <vector>

namespace inspect
{

/// Checks the text between the records of a file.
class SkippedText
{
public:
    explicit SkippedText(const QString& path) : m_file(path) {}

    /// Checks the text that the reader has skipped before its last record.
    void take(const intel_hex::RecordReader& reader);

    /// The first line of each kind of problem, and how many there are.
    std::vector<Problem> problems() const;

private:
    /// The lines of one kind.
    struct Lines {
        quint64 times = 0;
        intel_hex::TextPosition first;
    };

    void take_line(const QByteArray& line, intel_hex::TextPosition position);
    void add(std::vector<Problem>& problems, Code code, const Lines& lines, const char* what) const;

    QFile m_file;
    Lines m_lost;
    Lines m_other;
};

} // namespace inspect
