#include "sim/Replay.h"

#include "sim/FrameCodec.h"

#include <algorithm>
#include <utility>

namespace sim
{

Replay::Replay(FrameLog log) : m_log(std::move(log)) {}

QByteArray Replay::answer_to(const QByteArray& payload)
{
    const QByteArray frame = make_frame(payload);
    const auto rest = m_log.entries.begin() + static_cast<std::ptrdiff_t>(m_next);
    const auto found =
        std::find_if(rest, m_log.entries.end(),
                     [&frame](const FrameLog::Entry& entry) { return entry.request == frame; });
    if (found == m_log.entries.end()) {
        note_unmatched(payload);
        return {};
    }
    ++m_matched;
    m_next = static_cast<std::size_t>(found - m_log.entries.begin()) + 1;
    return found->response;
}

void Replay::note_unmatched(const QByteArray& payload)
{
    if (m_unmatched.empty() || m_unmatched.back().payload != payload) {
        m_unmatched.push_back({payload, 0});
    }
    ++m_unmatched.back().times;
}

} // namespace sim
