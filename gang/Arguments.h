#pragma once

#include "gang/SerialNumber.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace gang
{

/// What the user asks for. Empty texts: not asked for.
struct Arguments {
    enum class Action { Run, ShowHelp, ShowVersion };

    Action action = Action::Run;
    QString help_text; ///< for ShowHelp

    QStringList ports;
    QString watch; ///< pattern of ports to wait for
    QStringList tool_arguments;
    QString tool; ///< the program to run
    QString table;
    std::optional<unsigned short> expected_version;

    int jobs = 0; ///< 0: one for every port
    int tries = 1;
    int pause_ms = 0;
    int limit_ms = 0; ///< 0: none
    bool certify = false;
    bool force = false;

    bool json = false;
    QString record;
    QString station;
    QString keep;
    bool keep_failures_only = false;

    std::optional<NumberSlot> number_slot;
    QString number_file;
};

/// Takes the command line apart, the program's name first. Throws ArgumentError.
Arguments parse_arguments(const QStringList& command_line);

} // namespace gang
