#pragma once

#include <QString>

#include <array>
#include <optional>

namespace sim
{

/// In the order in which they take their effect.
enum class FaultKind {
    // Whatever else is to happen, these do.
    PowerLoss, ///< no sign of life from here on
    Unplug,    ///< the line vanishes
    // On the way to the device.
    LoseRequest,
    CorruptRequest,
    AlterRequest, ///< damaged in a way that the checksum does not show
    // In the device.
    PhantomWrite, ///< acknowledged and not done
    HalfWrite,    ///< acknowledged, and the first half done
    WrongAck,     ///< a write or erase acknowledged by a wrong byte
    StuckBits,
    // On the way back.
    LoseResponse,
    AlterResponse, ///< as AlterRequest
    CorruptResponse,
    TruncateResponse,
    DelayResponse,
    DuplicateResponse,
    Noise, ///< between the request and the answer
    // To any byte on the line.
    RequestBytes,
    ResponseBytes,
};

constexpr std::array<FaultKind, 18> fault_kinds = {
    FaultKind::PowerLoss,         FaultKind::Unplug,
    FaultKind::LoseRequest,       FaultKind::CorruptRequest,
    FaultKind::AlterRequest,      FaultKind::PhantomWrite,
    FaultKind::HalfWrite,         FaultKind::WrongAck,
    FaultKind::StuckBits,         FaultKind::LoseResponse,
    FaultKind::AlterResponse,     FaultKind::CorruptResponse,
    FaultKind::TruncateResponse,  FaultKind::DelayResponse,
    FaultKind::DuplicateResponse, FaultKind::Noise,
    FaultKind::RequestBytes,      FaultKind::ResponseBytes,
};

/// The kind's name on the command line and in summaries, such as "lose-response".
const char* name_of(FaultKind kind);
std::optional<FaultKind> fault_kind_named(const QString& name);

/// All names, parted by commas.
QString fault_kind_list();

/// The fault hits single bytes rather than commands.
bool hits_bytes(FaultKind kind);

} // namespace sim
