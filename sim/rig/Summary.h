#pragma once

#include "sim/device/DeviceMemory.h"
#include "sim/faults/FaultKind.h"
#include "sim/line/Lateness.h"
#include "sim/line/LineUse.h"
#include "sim/rig/CommandEnd.h"
#include "sim/rig/MemoryImage.h"
#include "sim/rig/Replay.h"
#include "sim/rig/Tally.h"

#include <QJsonObject>
#include <QStringList>

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

namespace sim
{

/// What is reported about a run at its end.
struct Summary {
    struct Pace {
        Lateness lateness;
        LineUse use;
    };

    struct Replayed {
        int matched = 0;
        int recorded = 0;
        std::vector<Replay::Unmatched> unmatched;
        qint64 further_unmatched = 0;
    };

    Tally commands;
    unsigned int dropped_frames = 0;
    qint64 bytes_from_host = 0;
    qint64 bytes_to_host = 0;
    qint64 lost_bytes = 0; ///< because the host left too much unread
    DeviceMemory::Statistics memory;
    /// Set when there were faults to inject.
    std::optional<std::uint64_t> seed;
    std::map<FaultKind, unsigned int> faults;
    /// Set when the line was paced.
    std::optional<Pace> pace;
    std::optional<Replayed> replayed;
    std::optional<MemoryImage::Comparison> check;
    /// Set when there was a command to run on the port.
    std::optional<CommandEnd> command;
};

/// As text for people.
QStringList text_of(const Summary& summary);
/// As JSON for programs.
QJsonObject json_of(const Summary& summary);

} // namespace sim
