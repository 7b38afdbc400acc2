#include "sim/rig/Replay.h"

#include "sim/device/FrameCodec.h"

#include <algorithm>
#include <utility>

namespace sim
{

namespace
{

/// Enough to see where a host departed from the recording.
constexpr std::size_t most_unmatched = 100;

} // namespace

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
    const bool is_again = payload == m_last_unmatched;
    m_last_unmatched = payload;
    if (!is_again && m_unmatched.size() == most_unmatched) {
        ++m_further_unmatched;
    } else if (!is_again) {
        m_unmatched.push_back({payload, 1});
    } else if (m_further_unmatched == 0) {
        ++m_unmatched.back().times;
    }
}

} // namespace sim
