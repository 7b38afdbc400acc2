#pragma once

#include "sim/rig/Rig.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace sim
{

/// What the command line of zserial-sim requests. An empty name: not requested.
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
    bool ignore_outside = false; ///< bytes of that image that lie outside the device
    QString state;
    QString link;
    QString replay;
    QString trace;
    QString summary;
    QStringList command; ///< to run on the port
    bool json = false;
};

/// Parses the command line, which begins with the program's name. Throws Error.
Arguments parse_arguments(const QStringList& command_line);

} // namespace sim
