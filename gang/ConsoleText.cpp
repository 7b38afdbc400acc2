#include "gang/ConsoleText.h"

#include <algorithm>

namespace gang
{

namespace
{

const QByteArray progress_start("\rProgress ");

/// Returns the length of the progress line at a position; 0 if there is none or it is incomplete.
int progress_length(const QByteArray& text, int position)
{
    if (position < 0 || text.mid(position, progress_start.size()) != progress_start) {
        return 0;
    }
    int end = position + progress_start.size();
    while (end < text.size() && text.at(end) >= '0' && text.at(end) <= '9') {
        ++end;
    }
    return end < text.size() && text.at(end) == '%' ? end + 1 - position : 0;
}

} // namespace

void ConsoleText::add(const QByteArray& bytes)
{
    // The new bytes may complete a progress line right after the one before.
    const int last = m_text.lastIndexOf(progress_start);
    int position = last <= 0 ? 0 : std::max(0, m_text.lastIndexOf(progress_start, last - 1));
    m_text += bytes;
    for (;;) {
        position = m_text.indexOf(progress_start, position);
        const int length = progress_length(m_text, position);
        if (length == 0) {
            return;
        }
        if (progress_length(m_text, position + length) != 0) {
            m_text.remove(position, length);
        } else {
            position += length;
        }
    }
}

int ConsoleText::percentage() const
{
    const int position = m_text.lastIndexOf(progress_start);
    const int length = progress_length(m_text, position);
    if (length == 0 || position + length != m_text.size()) {
        return -1;
    }
    const int digits = position + progress_start.size();
    const uint percentage = m_text.mid(digits, m_text.size() - 1 - digits).toUInt();
    return static_cast<int>(std::min(percentage, 100U));
}

} // namespace gang
