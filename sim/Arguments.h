#pragma once

#include "sim/SimulatedDevice.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <stdexcept>

namespace sim
{

/// What the user of the program zserial-sim asks for.
struct Arguments {
    enum class Action { Serve, ListDevices, ShowHelp, ShowVersion };

    Action action = Action::Serve;
    QString help_text; ///< for ShowHelp
    QString table;
    std::optional<unsigned short> version; ///< of the device to simulate
    Options options;
    QString memory_image; ///< empty, as the two below: not asked for
    QString save_image;
    QString check_image;
};

/// The command line can't be carried out; what() says why, in words for the user.
class UsageError : public std::runtime_error
{
public:
    explicit UsageError(const QString& text) : std::runtime_error(text.toStdString()) {}
};

/// Takes the command line apart, the program's name first. Throws UsageError.
Arguments parse_arguments(const QStringList& command_line);

} // namespace sim
