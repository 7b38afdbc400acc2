#pragma once

#include "inspect/Program.h"

namespace inspect
{

/// Standard output is a terminal, and its user has not set NO_COLOR.
bool standard_output_shows_colour();

/// Prints both texts. Returns the outcome's status, or ExitCannot if not all of the output could be
/// written.
int print(const Outcome& outcome);

} // namespace inspect
