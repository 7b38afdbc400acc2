#pragma once

#include "gang/Display.h"

#include <QString>
#include <QStringList>

namespace gang
{

/// Size and style of the table.
struct TableLook {
    int columns = 80;
    int lines = 24;
    bool colour = false;
};

/// Returns the table as lines of the screen, none wider than `look.columns`: a heading, a line for
/// each port and, if there are more ports than lines, one that counts the rest; failed and running
/// ports then come first. `expected_s` is the expected duration of an upload; 0 if unknown.
QStringList table_text(const RunStates& states, const TableLook& look, double elapsed_s,
                       double expected_s);

/// Returns the line of one port.
QString table_line(const RunState& state, const TableLook& look, double expected_s);

} // namespace gang
