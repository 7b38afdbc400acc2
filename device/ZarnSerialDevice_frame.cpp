// The frame codec as members of the device object, which reports why a frame was refused. All that
// is known about frames is in FrameCodec, which needs no device. The format: FrameCodec.h and
// docs/protocol.md.

#include "device/FrameCodec.h"
#include "device/ZarnSerialDevice.h"

bool ZarnSerialDevice::needs_escaping(char byte)
{
    return frame::needs_escaping(byte);
}

bool ZarnSerialDevice::is_terminated(QByteArray buffer)
{
    return frame::is_terminated(buffer);
}

bool ZarnSerialDevice::encode(QByteArray command, QByteArray& frame)
{
    if (command.isEmpty()) {
        return false;
    }
    frame = frame::encode(command);
    return true;
}

bool ZarnSerialDevice::decode(QByteArray frame, QByteArray& payload)
{
    const Reason reason = frame::decode(frame, payload);
    return !reason || error(*reason);
}
