#pragma once

#include <QTest>

namespace test
{

/// For waits that something ends; long enough for the busiest machine.
constexpr int patience_ms = 30000;

/// Lets the event loop run until the condition holds; false when it never does.
template <typename Condition>
bool wait_until(Condition condition)
{
    return QTest::qWaitFor(condition, patience_ms);
}

} // namespace test
