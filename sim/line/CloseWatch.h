#pragma once

#include "sim/line/Descriptor.h"

#include <QObject>
#include <QSocketNotifier>
#include <QString>

#include <memory>

namespace sim
{

/// Notices when a process closes a file, or dies with the file open. Where the system has no room
/// for another watch, it notices nothing.
class CloseWatch : public QObject
{
    Q_OBJECT

public:
    explicit CloseWatch(const QString& path);

Q_SIGNALS:
    void closed();

private:
    void take();

    Descriptor m_descriptor;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace sim
