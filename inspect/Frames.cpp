#include "inspect/Frames.h"

#include "device/FrameCodec.h"

namespace inspect
{

namespace
{

constexpr quint64 command_bytes = 5; ///< operation, count and word address
constexpr double bits_per_byte = 10; ///< with start and stop bit

quint64 framed(quint64 payload)
{
    static const auto frame = static_cast<quint64>(frame::encode(QByteArray(1, 'A')).size() - 1);
    return frame + payload;
}

} // namespace

quint64 read_bytes(quint64 data)
{
    return framed(command_bytes) + framed(command_bytes + data);
}

quint64 write_bytes(quint64 data)
{
    return framed(command_bytes + data) + framed(1);
}

quint64 erase_bytes()
{
    return write_bytes(0);
}

double seconds_of(quint64 bytes, unsigned int rate)
{
    return rate == 0 ? 0 : static_cast<double>(bytes) * bits_per_byte / rate;
}

} // namespace inspect
