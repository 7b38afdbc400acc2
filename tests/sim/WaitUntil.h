#pragma once

#include <QCoreApplication>
#include <QTimer>

namespace sim_test
{

/// Works on the event loop until the predicate holds; false when it does not in a time that is
/// longer than anything takes.
template <typename Predicate>
bool wait_until(Predicate predicate)
{
    QTimer far_too_long;
    far_too_long.setSingleShot(true);
    far_too_long.start(20000);
    while (!predicate() && far_too_long.isActive()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return predicate();
}

} // namespace sim_test
