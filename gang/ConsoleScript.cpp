#include "gang/ConsoleScript.h"

namespace gang
{

void ConsoleScript::say(const QByteArray& text)
{
    m_pending += text;
}

void ConsoleScript::flush()
{
    m_flushed.push_back(m_pending);
    m_pending.clear();
}

int ConsoleScript::end_of_earlier_blocks(const QByteArray& console) const
{
    int end = 0;
    for (const QByteArray& block : m_flushed) {
        const int start = console.indexOf(block, end);
        if (start < 0) {
            return -1;
        }
        end = start + block.size();
    }
    return end;
}

std::optional<QByteArray> ConsoleScript::text_before(const QByteArray& console,
                                                     const QByteArray& ending) const
{
    const QByteArray block = m_pending + ending;
    const int start = console.size() - block.size();
    const int earliest = end_of_earlier_blocks(console);
    if (earliest < 0 || start < earliest || !console.endsWith(block)) {
        return std::nullopt;
    }
    return console.mid(earliest, start - earliest);
}

std::optional<QByteArray> ConsoleScript::text_before(const QByteArray& console,
                                                     const QByteArray& ending_start,
                                                     const QByteArray& ending_end) const
{
    const QByteArray block = m_pending + ending_start;
    const int start = console.lastIndexOf(block);
    const int earliest = end_of_earlier_blocks(console);
    const bool has_room = start + block.size() + ending_end.size() <= console.size();
    if (earliest < 0 || start < earliest || !has_room || !console.endsWith(ending_end)) {
        return std::nullopt;
    }
    return console.mid(earliest, start - earliest);
}

} // namespace gang
