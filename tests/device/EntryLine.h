#pragma once

#include "tests/support/DeviceOnLine.h"
#include "tests/support/Replies.h"

#include <QCoreApplication>

#include <vector>

namespace test
{

inline void process_events()
{
    QCoreApplication::processEvents();
}

/// A device object without a selected profile, which polls the event loop.
inline Host newcomer()
{
    Host host;
    host.knows_device = false;
    host.events = process_events;
    return host;
}

/// A device object without a selected profile, and a device of the table that starts as `entry`
/// says.
class EntryLine : public DeviceOnLine
{
public:
    EntryLine(const char* name, sim::Entry entry) : DeviceOnLine(name, newcomer(), {entry}) {}

    bool enter() { return device.QV_entry_procedure(&version); }

    unsigned short version = 0x5A5A;
};

/// A starting device that answers its probes, one after the other, with these raw bytes.
class ProbeReplies : public EntryLine
{
public:
    explicit ProbeReplies(const std::vector<Reply>& replies)
        : EntryLine("sample", sim::Entry::Silent) // keeps receiving probes
    {
        simulated.set_reply_filter(first(replies));
    }
};

} // namespace test
