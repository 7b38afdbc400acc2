#pragma once

#include <QString>
#include <QStringList>

namespace test
{

/// The arguments of a command line that needs no quoting.
inline QStringList words(const char* line)
{
    return QString::fromUtf8(line).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

} // namespace test
