#pragma once

#include <QByteArray>

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
/// Writes to standard output at once and as a whole. Nobody reading any more is no error.
void write_to_terminal(const QByteArray& bytes);

} // namespace gang
