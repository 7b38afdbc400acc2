#include "sim/program/Console.h"

#include <QTextStream>

#include <cstdio>

namespace sim
{

void print(const QString& line)
{
    QTextStream(stdout) << line << '\n';
}

void complain(const QString& line)
{
    QTextStream(stderr) << "zserial-sim: " << line << '\n';
}

} // namespace sim
