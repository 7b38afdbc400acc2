#pragma once

#include "app/OperationDispatch.h"
#include "app/Settings.h"
#include "sim/device/Command.h"

#include <QString>
#include <QStringList>

#include <map>
#include <optional>
#include <vector>

class Profile;

namespace inspect
{

/// What goes over the line in a part of a run.
struct Traffic {
    std::map<sim::Command::Kind, quint64> commands;
    quint64 bytes_to_device = 0;
    quint64 bytes_from_device = 0; ///< with the echo of a half duplex line
    quint64 pages_erased = 0;
    double seconds = 0; ///< at the profile's rate

    Traffic& operator+=(const Traffic& other);
};

/// An operation, or the reset when there is none.
struct RehearsedStep {
    std::optional<Operation> operation;
    bool fails = false;
    QStringList messages; ///< of the uploader, of a step that fails
    Traffic traffic;
};

/// How many bytes there are of a kind, and where the first one is.
struct FoundBytes {
    quint64 count = 0;
    unsigned int first_address = 0;

    void add(unsigned int address);
};

/// Bytes that the device held before a run and no image names, and that the run destroys.
struct LostContent {
    FoundBytes flash;
    FoundBytes eeprom;
};

/// A command whose answer would come too late at the profile's rate.
struct LateAnswer {
    sim::Command command;
    double seconds = 0;
};

struct Rehearsed {
    std::vector<RehearsedStep> steps; ///< up to the first that fails
    std::vector<sim::Command> commands;
    FoundBytes unerased; ///< of flash, that would not take their value: a bit is not erased
    LostContent lost;    ///< of the present content
    std::optional<LateAnswer> late;  ///< the first
    unsigned int left_out_bytes = 0; ///< of the present content, for which the device has no place
};

struct RehearsalOptions {
    QString present_content; ///< HEX file with what the device holds; empty for nothing
    bool keeps_commands = false;
};

/// The device at the other end of the line, and the one that the uploader takes it for.
struct RehearsedProfiles {
    const Profile& device;
    const Profile& uploader;
};

/// Carries out the operations of a run, and its reset, on a simulated device that runs its
/// bootloader. It is the uploader's own code that does so, over a line that takes no time; the
/// times are calculated. The files that the settings name are only read. Throws UsageError when
/// that cannot be done, and what sim::MemoryImage throws for a bad present content.
Rehearsed rehearse(const RehearsedProfiles& profiles, const Settings& settings,
                   const RehearsalOptions& options);

} // namespace inspect
