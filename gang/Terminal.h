#pragma once

namespace gang
{

struct TerminalSize {
    int columns = 80;
    int lines = 24;
};

/// True if standard output is a terminal that can be drawn on.
bool has_terminal();
/// True if NO_COLOR is set.
bool wants_no_colour();
TerminalSize terminal_size();
/// True if standard output accepts data now: it is not stopped, and its reader keeps up.
bool takes_output();

} // namespace gang
