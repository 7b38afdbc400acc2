#pragma once

#include <QByteArray>
#include <QStringList>

#include <ostream>
#include <string>
#include <vector>

namespace test
{

/// A command line that the scan refuses, and the whole message. Files in the folder "nowhere" can't
/// be opened.
struct RefusedLine {
    const char* name;
    QStringList arguments;
    QByteArray message;
};

/// Every message of the scan, and the order of its checks.
std::vector<RefusedLine> refused_lines();

inline std::ostream& operator<<(std::ostream& stream, const RefusedLine& line)
{
    return stream << line.arguments.join(QLatin1Char(' ')).toStdString();
}

} // namespace test
