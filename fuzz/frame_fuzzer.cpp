#include "device/FrameCodec.h"
#include "fuzz/Target.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes = bytes_of(data, size);
    QByteArray payload;
    if (!frame::decode(bytes, payload)) {
        must_hold(frame::is_terminated(bytes));
        must_hold(!payload.isEmpty() && payload.size() <= bytes.size() - 4);
    }
    if (!bytes.isEmpty()) {
        const QByteArray framed = frame::encode(bytes);
        must_hold(frame::is_terminated(framed));
        must_hold(!frame::decode(framed, payload));
        must_hold(payload == bytes);
    }
    return 0;
}
