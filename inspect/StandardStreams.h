#pragma once

#include "inspect/Program.h"

namespace inspect
{

/// Standard output is a terminal, and its user has not set NO_COLOR.
bool standard_output_shows_colour();

/// Prints both texts. Returns the outcome's status, or that of a program that could not do its work
/// when standard output does not take all.
int print(const Outcome& outcome);

} // namespace inspect
