#pragma once

namespace gang
{

struct TerminalSize {
    int columns = 80;
    int lines = 24;
};

/// Standard output is a terminal on which a screen can be drawn.
bool has_terminal();
/// The user has asked for no colours.
bool wants_no_colour();
TerminalSize terminal_size();
/// Standard output takes something now; nobody has stopped it, and its reader keeps up.
bool takes_output();

} // namespace gang
