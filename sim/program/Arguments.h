#pragma once

#include "sim/rig/Rig.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace sim
{

/// What the user of the program zserial-sim asks for. Empty names: not asked for.
struct Arguments {
    enum class Action { Serve, ListDevices, ShowHelp, ShowVersion };

    Action action = Action::Serve;
    QString help_text; ///< for ShowHelp
    QString table;
    std::optional<unsigned short> version; ///< of the device to simulate
    RigOptions rig;
    QString memory_image;
    QString save_image;
    QString check_image;
    bool ignore_outside = false; ///< bytes of that image that the device has no place for
    QString state;
    QString link;
    QString replay;
    QString trace;
    QString summary;
    QStringList command; ///< to run on the port
    bool json = false;
};

/// Takes the command line apart, the program's name first. Throws Error.
Arguments parse_arguments(const QStringList& command_line);

} // namespace sim
