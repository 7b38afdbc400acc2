#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

namespace test
{

/// A file, or two, that brings a problem of one code.
struct Trigger {
    const char* code;
    QByteArray content; ///< of the table or image; none at all when null
    int line;           ///< where the problem is; 0 for nowhere
    int column;
    QByteArray other = {}; ///< of the table beside it

    bool is_image() const { return code[0] == 'I'; }
};

/// For every code at least one.
const std::vector<Trigger>& triggers();

} // namespace test
