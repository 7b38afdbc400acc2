#pragma once

#include "app/CommandLine.h"

#include <QLatin1String>
#include <QStringList>

namespace command_line
{

/// What an option's handler works on.
struct Scan {
    QStringList following; ///< the option's own arguments, as far as the command line has them
    FileCheck can_open;
    Settings& settings;

    bool has(int count) const { return following.size() >= count; }
};

struct Option {
    QLatin1String name;
    int arguments; ///< how many array elements behind the option are its own
    Outcome (*handle)(Scan& scan);
};

/// The option of that name, compared whole and by case; null when there is none.
const Option* find_option(const QString& argument);

/// A refusal without the usage text.
Outcome refuse(const QString& message);

} // namespace command_line
