#pragma once

#include "sim/device/Named.h"

#include <QString>

#include <array>
#include <optional>

namespace sim
{

/// In the order in which they take effect; fault_kinds describes each.
enum class FaultKind {
    // Whatever other faults there are, these take effect.
    PowerLoss,
    Unplug,
    // On the way to the device.
    LoseRequest,
    CorruptRequest,
    AlterRequest,
    // In the device.
    PhantomWrite,
    HalfWrite,
    WrongAck,
    StuckBits,
    // On the way back.
    LoseResponse,
    AlterResponse,
    CorruptResponse,
    TruncateResponse,
    DelayResponse,
    DuplicateResponse,
    Noise,
    // To any byte on the line.
    RequestBytes,
    ResponseBytes,
};

constexpr std::array<Named<FaultKind>, 18> fault_kinds = {{
    {FaultKind::PowerLoss, "power-loss", "the device is dead from this command on"},
    {FaultKind::Unplug, "unplug", "the port vanishes"},
    {FaultKind::LoseRequest, "lose-request", "the device never receives the command"},
    {FaultKind::CorruptRequest, "corrupt-request", "the command is damaged; the device drops it"},
    {FaultKind::AlterRequest, "alter-request", "the command is damaged, its checksum matches"},
    {FaultKind::PhantomWrite, "phantom-write", "a write is acknowledged but not carried out"},
    {FaultKind::HalfWrite, "half-write", "a write is acknowledged but half carried out"},
    {FaultKind::WrongAck, "wrong-ack", "a write or erase gets a wrong acknowledgement"},
    {FaultKind::StuckBits, "stuck-bits", "bits of a cell never change"},
    {FaultKind::LoseResponse, "lose-response", "the answer is lost"},
    {FaultKind::AlterResponse, "alter-response", "the answer is damaged, its checksum matches"},
    {FaultKind::CorruptResponse, "corrupt-response", "one bit of the answer is wrong"},
    {FaultKind::TruncateResponse, "truncate-response", "the end of the answer is missing"},
    {FaultKind::DelayResponse, "delay-response", "the answer is late"},
    {FaultKind::DuplicateResponse, "duplicate-response", "the answer is sent twice"},
    {FaultKind::Noise, "noise", "random bytes precede the answer"},
    {FaultKind::RequestBytes, "request-bytes", "each byte of a command may have a wrong bit"},
    {FaultKind::ResponseBytes, "response-bytes", "each byte of an answer may have a wrong bit"},
}};

/// The kind's name on the command line and in summaries, such as "lose-response".
const char* name_of(FaultKind kind);
std::optional<FaultKind> fault_kind_named(const QString& name);

/// How a user writes a fault of the kind, such as "delay-response:MS".
QString form_of(FaultKind kind);

/// All names, separated by commas.
QString fault_kind_list();

/// Whether the fault affects single bytes rather than commands.
bool hits_bytes(FaultKind kind);

} // namespace sim
