#pragma once

#include <QByteArray>

#include <optional>
#include <vector>

namespace gang
{

/// The text that zserial is expected to write to its buffered stream. The stream reaches standard
/// output in blocks, one per flush; progress and error lines, which are not buffered, appear
/// between the blocks and never inside one.
class ConsoleScript
{
public:
    void say(const QByteArray& text);
    void flush();

    /// Returns the text between the flushed blocks and the last block if `console` contains all
    /// flushed blocks in order and ends with the last one, which is the pending text and `ending`.
    /// Otherwise returns nothing.
    std::optional<QByteArray> text_before(const QByteArray& console,
                                          const QByteArray& ending) const;
    /// Same, if only the start and the end of the ending are known, as with a message that contains
    /// a file name.
    std::optional<QByteArray> text_before(const QByteArray& console, const QByteArray& ending_start,
                                          const QByteArray& ending_end) const;

private:
    /// Returns the offset after the flushed blocks, in bytes; -1 if one of them is missing.
    int end_of_earlier_blocks(const QByteArray& console) const;

    std::vector<QByteArray> m_flushed;
    QByteArray m_pending;
};

} // namespace gang
