#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

namespace test
{

/// One or two files that cause a problem with this code. Those of ports come with PortsTest.
struct Trigger {
    const char* code;
    QByteArray content; ///< of the table, image or log; none at all when null
    int line;           ///< where the problem is; 0 for nowhere
    int column;
    QByteArray other = {}; ///< of the other table

    /// "table", "image" or "log".
    const char* subcommand() const
    {
        return code[0] == 'T' ? "table" : code[0] == 'I' ? "image" : "log";
    }

    /// What names the other table.
    const char* other_option() const { return code[0] == 'T' ? "--against" : "--table"; }
};

/// At least one for every code.
const std::vector<Trigger>& triggers();

} // namespace test
