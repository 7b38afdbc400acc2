#pragma once

#include <QByteArray>

#include <functional>
#include <optional>
#include <vector>

namespace sim
{

struct Command;

/// Bytes that the device puts on the line, and how long after the command.
struct Delivery {
    QByteArray bytes;
    int delay_ms = 0;
};

/// Given bytes from the host, returns those that reach the device.
using RequestFilter = std::function<QByteArray(const QByteArray& bytes)>;

/// Asked once for every command that is made out, in their order, before anything is done: the
/// payload that gets to the device, or none if it never does. Of a probe, any payload will do.
using Gate = std::function<std::optional<QByteArray>(const Command& command)>;

/// Asked for every write that the device accepts: what of its data gets into the cells, from their
/// first on.
using Store = std::function<QByteArray(const Command& command, const QByteArray& data)>;

/// Asked for every command: the deliveries that take the place of its answer. The answer passed in
/// is complete: a whole frame, the raw reply for a probe, empty if the device stays silent. No
/// delivery drops it; the bytes of several deliveries can be read separately.
using ReplyFilter =
    std::function<std::vector<Delivery>(const Command& command, const QByteArray& answer)>;

} // namespace sim
