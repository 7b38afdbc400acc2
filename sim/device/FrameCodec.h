#pragma once

#include <QByteArray>

#include <vector>

namespace sim
{

/// The frame that carries `payload` on the line.
QByteArray make_frame(const QByteArray& payload);

/// Finds frames in a stream of bytes. A device cannot report errors: whatever is not a valid
/// frame is dropped, and the next pair of sync symbols starts a new one.
class FrameReceiver
{
public:
    /// Takes the next bytes from the line, split anywhere, and returns the payloads of the frames
    /// that they complete.
    std::vector<QByteArray> receive(const QByteArray& bytes);
    /// Forgets the frame that has begun.
    void reset();

    /// Frames that began with sync symbols and were dropped: bad checksum, needless escape,
    /// a sync symbol in the middle, no payload.
    unsigned int dropped_frames() const { return m_dropped_frames; }

private:
    enum class State { Idle, FirstSync, Body, Escape };

    bool take(char byte);
    void take_escaped(char byte);
    bool take_plain(char byte);
    void take_data(char byte);
    void drop(State next);
    bool finish();

    State m_state = State::Idle;
    QByteArray m_body; ///< unescaped payload and checksum
    unsigned int m_dropped_frames = 0;
};

} // namespace sim
