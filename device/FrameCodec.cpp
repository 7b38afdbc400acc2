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

/// Returns where the next byte goes.
char* put_escaped(char* out, char byte)
{
    if (needs_escaping(byte)) {
        *out++ = escape;
    }
    *out++ = byte;
    return out;
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

/// Takes everything before checksum and terminator, byte by byte. The payload goes straight into
/// memory that the caller has made large enough: appending to a QByteArray costs several times as
/// much as the byte itself.
class PayloadScanner
{
public:
    enum class State { Sync, Escape, Data };

    explicit PayloadScanner(char* out) : m_begin(out), m_out(out) {}

    State state() const { return m_state; }

    /// Of the payload so far, in bytes.
    int length() const { return static_cast<int>(m_out - m_begin); }

    /// Whether the byte may come at this place. If not, nothing changes and refusal() says why.
    bool take(char byte)
    {
        if (m_state == State::Escape) {
            return needs_escaping(byte) && store(byte);
        }
        switch (byte) {
        case sync:
            return m_state == State::Sync;
        case terminator:
            return false;
        case escape:
            m_state = State::Escape;
            return true;
        default:
            return store(byte);
        }
    }

    /// Of a byte that take() did not accept.
    QString refusal(int position, char byte) const
    {
        if (m_state == State::Escape) {
            return QStringLiteral("response byte at position %1 (%2) was needlessly escaped")
                .arg(QString::number(position), sign_extended_hex(byte));
        }
        if (byte == sync) {
            return QStringLiteral("response contains unexpected sync symbol at position %1")
                .arg(position);
        }
        return QStringLiteral("response contains premature terminator symbol at position %1")
            .arg(position);
    }

private:
    bool store(char byte)
    {
        *m_out++ = byte;
        m_state = State::Data;
        return true;
    }

    const char* m_begin;
    char* m_out;
    State m_state = State::Sync;
};

/// Leaves in `payload` what comes before the first byte that may not stand where it does.
Reason take_payload(const QByteArray& frame, int end, QByteArray& payload,
                    PayloadScanner::State& state)
{
    payload.resize(end);
    PayloadScanner scanner(payload.data());
    const char* const bytes = frame.constData();
    int position = 0;
    while (position < end && scanner.take(bytes[position])) {
        ++position;
    }
    state = scanner.state();
    payload.truncate(scanner.length());
    return position == end ? Reason() : scanner.refusal(position, bytes[position]);
}

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
    QByteArray frame(2 * payload.size() + 5, sync); // room for every byte to be escaped
    char* out = frame.data() + 2;
    for (const char byte : payload) {
        out = put_escaped(out, byte);
    }
    out = put_escaped(out, checksum(payload));
    *out++ = terminator;
    frame.truncate(static_cast<int>(out - frame.constData()));
    return frame;
}

Reason decode(const QByteArray& frame, QByteArray& payload)
{
    payload.clear();
    if (auto reason = check_envelope(frame)) {
        return reason;
    }
    const int checksum_position = frame.size() - 2;
    auto state = PayloadScanner::State::Sync;
    if (auto reason = take_payload(frame, checksum_position, payload, state)) {
        return reason;
    }
    if (state == PayloadScanner::State::Sync) {
        return QStringLiteral("response contained only SYNC symbols");
    }
    return check_checksum(frame[checksum_position], checksum(payload),
                          state == PayloadScanner::State::Escape);
}

} // namespace frame
