#pragma once

#include <QtGlobal>

namespace test
{

constexpr qint64 ms = 1000000; ///< in nanoseconds, the unit of the simulator's clocks

} // namespace test
