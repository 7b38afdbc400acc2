#pragma once

#include <QByteArray>

#include <optional>
#include <vector>

namespace gang
{

/// What the tool's buffered stream comes to, as far as it is known. The stream reaches standard
/// output in blocks, one for each flush; progress and error lines come between the blocks and never
/// inside one.
class ConsoleScript
{
public:
    void say(const QByteArray& text);
    void flush();

    /// If `console` holds every block in order and ends with the last one and `ending`: what was
    /// printed between the last block and the one before it. Nothing if it does not.
    std::optional<QByteArray> text_before(const QByteArray& console,
                                          const QByteArray& ending) const;
    /// The same for an ending of which only the two sides are known, such as a message with a file
    /// name in between.
    std::optional<QByteArray> text_before(const QByteArray& console, const QByteArray& ending_start,
                                          const QByteArray& ending_end) const;

private:
    /// Where the last block may begin at the earliest; -1 if an earlier block is missing.
    int end_of_earlier_blocks(const QByteArray& console) const;

    std::vector<QByteArray> m_flushed;
    QByteArray m_pending;
};

} // namespace gang
