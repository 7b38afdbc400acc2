#pragma once

#include "app/Options.h"

#include <QString>

namespace inspect
{

/// What the uploader takes an option and its arguments for, in a few words.
QString meaning_of(const command_line::GivenWord& word);

/// The number of "-W", "-l", "-E" or "-M" as the uploader converts it.
unsigned int number_in(const QString& text);

/// "0x00000022 to 0x00000100": the first two arguments of a ranged operation.
QString range_in(const command_line::GivenWord& word);

} // namespace inspect
