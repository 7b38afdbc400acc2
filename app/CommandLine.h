#pragma once

#include "app/Failure.h"
#include "app/Options.h"
#include "app/Settings.h"

#include <QStringList>

/// The command line of the tool: from arguments to settings, or to the reason why not. Nothing here
/// prints or ends the process. The order of all checks is part of the interface.
namespace command_line
{

/// The file check that the tool uses.
bool can_open_for_reading_and_writing(const QString& name);

/// Takes the arguments after the program's name from left to right. Arguments that are not
/// options are ignored. Each file that an option names is checked when its option is met.
std::optional<Failure> scan(const QStringList& arguments, FileCheck can_open, Settings& settings);

/// Operations that exclude each other; checked before the frame log is opened.
std::optional<Failure> check_conflicts(const Settings& settings);

/// Whether there is a way to find the device's version and something to do; checked after the
/// frame log is open.
std::optional<Failure> check_request(const Settings& settings);

/// What a command line does to files before anything is sent.
struct FileAccess {
    FileCheck can_open;
    bool (*open_frame_log)(const QString& name);
};

/// All of the above, in this order.
std::optional<Failure> take(const QStringList& arguments, const FileAccess& files,
                            Settings& settings);

} // namespace command_line
