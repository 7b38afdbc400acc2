#pragma once

#include "gang/Display.h"

#include <QString>
#include <QStringList>

namespace gang
{

/// What a table of runs is drawn with.
struct TableLook {
    int columns = 80;
    int lines = 24;
    bool colour = false;
};

/// The table as lines of the screen, each at most as wide as it is: a heading, a line for each
/// port, and, when there are more ports than lines, one that counts the rest. Then failed and
/// running ports come first. `expected_s` is how long an upload takes, 0 if that is not known.
QStringList table_text(const RunStates& states, const TableLook& look, double elapsed_s,
                       double expected_s);

/// The line of one port.
QString table_line(const RunState& state, const TableLook& look, double expected_s);

} // namespace gang
