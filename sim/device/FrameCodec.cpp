#include "sim/device/FrameCodec.h"

namespace sim
{

namespace
{

constexpr char sync = '\x55';
constexpr char escape = '\x05';
constexpr char terminator = '\x04';

/// A line that never sends a terminator must not use up all memory; no frame is nearly this long.
constexpr int longest_body = 1 << 20;

bool is_special(char byte)
{
    return byte == sync || byte == escape || byte == terminator;
}

unsigned char sum(const QByteArray& bytes)
{
    unsigned int total = 0;
    for (const char byte : bytes) {
        total += static_cast<unsigned char>(byte);
    }
    return static_cast<unsigned char>(total & 0xFFU);
}

void append_escaped(QByteArray& frame, char byte)
{
    if (is_special(byte)) {
        frame.append(escape);
    }
    frame.append(byte);
}

} // namespace

QByteArray make_frame(const QByteArray& payload)
{
    QByteArray frame(2, sync);
    for (const char byte : payload) {
        append_escaped(frame, byte);
    }
    append_escaped(frame, static_cast<char>(0x100U - sum(payload)));
    frame.append(terminator);
    return frame;
}

std::vector<QByteArray> FrameReceiver::receive(const QByteArray& bytes)
{
    std::vector<QByteArray> payloads;
    for (const char byte : bytes) {
        if (take(byte)) {
            payloads.push_back(m_body.chopped(1));
        }
    }
    return payloads;
}

void FrameReceiver::reset()
{
    m_state = State::Idle;
    m_body.clear();
}

/// True if the byte completes a valid frame, whose payload and checksum are then in the body.
bool FrameReceiver::take(char byte)
{
    switch (m_state) {
    case State::Idle:
        m_state = byte == sync ? State::FirstSync : State::Idle;
        return false;
    case State::FirstSync:
        m_state = byte == sync ? State::Body : State::Idle;
        m_body.clear();
        return false;
    case State::Escape:
        take_escaped(byte);
        return false;
    case State::Body:
        break;
    }
    return take_plain(byte);
}

void FrameReceiver::take_escaped(char byte)
{
    if (!is_special(byte)) {
        drop(State::Idle);
        return;
    }
    m_state = State::Body;
    take_data(byte);
}

bool FrameReceiver::take_plain(char byte)
{
    if (byte == terminator) {
        return finish();
    }
    if (byte == escape) {
        m_state = State::Escape;
    } else if (byte != sync) {
        take_data(byte);
    } else if (!m_body.isEmpty()) {
        // The host gave up in the middle of a frame and has begun another.
        drop(State::FirstSync);
    }
    return false;
}

void FrameReceiver::take_data(char byte)
{
    m_body.append(byte);
    if (m_body.size() > longest_body) {
        drop(State::Idle);
    }
}

void FrameReceiver::drop(State next)
{
    ++m_dropped_frames;
    m_body.clear();
    m_state = next;
}

bool FrameReceiver::finish()
{
    if (m_body.size() < 2 || sum(m_body) != 0) {
        drop(State::Idle);
        return false;
    }
    m_state = State::Idle;
    return true;
}

} // namespace sim
