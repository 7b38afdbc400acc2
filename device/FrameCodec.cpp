#include "device/FrameCodec.h"

#include <numeric>

namespace frame
{

namespace
{

constexpr int minimum_length = 4;

QString hex2(char byte)
{
    return QStringLiteral("%1")
        .arg(static_cast<unsigned char>(byte), 2, 16, QLatin1Char('0'))
        .toUpper();
}

/// Bytes from 0x80 on show with all 16 digits of their sign extension.
QString sign_extended_hex(char byte)
{
    const auto narrow = static_cast<qint8>(byte);
    const auto widened = static_cast<qulonglong>(qint64{narrow});
    return QStringLiteral("%1").arg(widened, 2, 16, QLatin1Char('0')).toUpper();
}

void append_escaped(QByteArray& out, char byte)
{
    if (needs_escaping(byte)) {
        out.append(escape);
    }
    out.append(byte);
}

Reason check_envelope(const QByteArray& frame)
{
    if (frame.size() < minimum_length) {
        return QStringLiteral("response is %1 bytes long, expected at least %2 bytes")
            .arg(frame.size())
            .arg(minimum_length);
    }
    if (frame[0] != sync) {
        return QStringLiteral("response is missing first sync symbol");
    }
    if (frame[1] != sync) {
        return QStringLiteral("response is missing second sync symbol");
    }
    if (!is_terminated(frame)) {
        return QStringLiteral("response is not properly terminated");
    }
    return std::nullopt;
}

/// Takes everything before checksum and terminator, byte by byte.
class PayloadScanner
{
public:
    enum class State { Sync, Escape, Data };

    explicit PayloadScanner(QByteArray& payload) : m_payload(payload) {}

    State state() const { return m_state; }

    Reason take(int position, char byte)
    {
        if (m_state == State::Escape) {
            return take_escaped(position, byte);
        }
        switch (byte) {
        case sync:
            return take_sync(position);
        case terminator:
            return QStringLiteral("response contains premature terminator symbol at position %1")
                .arg(position);
        case escape:
            m_state = State::Escape;
            return std::nullopt;
        default:
            store(byte);
            return std::nullopt;
        }
    }

private:
    Reason take_escaped(int position, char byte)
    {
        if (!needs_escaping(byte)) {
            return QStringLiteral("response byte at position %1 (%2) was needlessly escaped")
                .arg(QString::number(position), sign_extended_hex(byte));
        }
        store(byte);
        return std::nullopt;
    }

    Reason take_sync(int position) const
    {
        if (m_state == State::Sync) {
            return std::nullopt;
        }
        return QStringLiteral("response contains unexpected sync symbol at position %1")
            .arg(position);
    }

    void store(char byte)
    {
        m_payload.append(byte);
        m_state = State::Data;
    }

    QByteArray& m_payload;
    State m_state = State::Sync;
};

Reason check_checksum(char received, char expected, bool escaped)
{
    if (escaped && !needs_escaping(received)) {
        return QStringLiteral("response contained a needlessly-escaped checksum");
    }
    if (received != expected) {
        return QStringLiteral("response checksum mismatch (expected %1, got %2)")
            .arg(hex2(expected), hex2(received));
    }
    return std::nullopt;
}

} // namespace

bool needs_escaping(char byte)
{
    return byte == terminator || byte == escape || byte == sync;
}

bool is_terminated(const QByteArray& buffer)
{
    if (buffer.size() < minimum_length || !buffer.endsWith(terminator)) {
        return false;
    }
    int escapes = 0;
    for (int i = buffer.size() - 2; i >= 0 && buffer[i] == escape; --i) {
        ++escapes;
    }
    return escapes % 2 == 0;
}

char checksum(const QByteArray& payload)
{
    const unsigned int sum =
        std::accumulate(payload.begin(), payload.end(), 0U, [](unsigned int total, char byte) {
            return total + static_cast<unsigned char>(byte);
        });
    return static_cast<char>(static_cast<unsigned char>(0U - sum));
}

QByteArray encode(const QByteArray& payload)
{
    QByteArray frame(2, sync);
    frame.reserve(payload.size() + 5);
    for (const char byte : payload) {
        append_escaped(frame, byte);
    }
    append_escaped(frame, checksum(payload));
    frame.append(terminator);
    return frame;
}

Reason decode(const QByteArray& frame, QByteArray& payload)
{
    payload.clear();
    if (auto reason = check_envelope(frame)) {
        return reason;
    }
    payload.reserve(frame.size());
    PayloadScanner scanner(payload);
    const int checksum_position = frame.size() - 2;
    for (int i = 0; i < checksum_position; ++i) {
        if (auto reason = scanner.take(i, frame[i])) {
            return reason;
        }
    }
    if (scanner.state() == PayloadScanner::State::Sync) {
        return QStringLiteral("response contained only SYNC symbols");
    }
    return check_checksum(frame[checksum_position], checksum(payload),
                          scanner.state() == PayloadScanner::State::Escape);
}

} // namespace frame
