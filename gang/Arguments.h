#pragma once

#include "gang/SerialNumber.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace gang
{

/// The options of a command line. Those that are not given are empty or have their defaults.
struct Arguments {
    enum class Action { Run, ShowHelp, ShowVersion };

    Action action = Action::Run;
    QString help_text; ///< for ShowHelp

    QStringList ports;
    QString watch; ///< shell wildcard pattern of ports to wait for
    QStringList tool_arguments;
    QString tool; ///< zserial program; empty: find one
    QString table;
    std::optional<unsigned short> expected_version;

    int jobs = 0; ///< most uploads at a time; 0: no limit
    int tries = 1;
    int pause_ms = 0;
    int limit_ms = 0; ///< time limit of each zserial process; 0: none
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

/// Parses a command line, which starts with the name of the program. Throws ArgumentError.
Arguments parse_arguments(const QStringList& command_line);

} // namespace gang
