#pragma once

#include "app/Failure.h"
#include "app/Settings.h"

#include <QLatin1String>
#include <QStringList>

#include <optional>
#include <vector>

namespace command_line
{

/// Checks whether a file can be opened for reading and writing; creates it if it is missing.
using FileCheck = bool (*)(const QString& name);

/// What an option's handler works on.
struct Scan {
    QStringList following; ///< the option's own arguments, as far as the command line has them
    FileCheck can_open;
    Settings& settings;

    bool has(int count) const { return following.size() >= count; }
};

struct Option {
    QLatin1String name;
    int arguments; ///< how many array elements after the option are its own
    std::optional<Failure> (*handle)(Scan& scan);
};

/// The option of that name, compared whole and by case; null when there is none.
const Option* find_option(const QString& argument);

/// An element of the command line that is no argument of an option.
struct GivenWord {
    QString text;
    const Option* option;  ///< null for a word that is none, which is ignored
    QStringList following; ///< the option's own arguments, as far as the command line has them
};

std::vector<GivenWord> split(const QStringList& arguments);

} // namespace command_line
