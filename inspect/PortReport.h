#pragma once

#include "inspect/PortAccess.h"
#include "inspect/PortLocks.h"
#include "inspect/Problem.h"
#include "inspect/Processes.h"
#include "inspect/SerialPorts.h"
#include "inspect/SystemRoots.h"
#include "inspect/TextPage.h"

#include <QJsonObject>

#include <vector>

namespace inspect
{

/// A port with everything that can keep a user from it.
struct InspectedPort {
    SerialPort port;
    PortAccess access;
    std::vector<Process> holders;
    std::vector<PortLock> locks;
};

/// All ports of a system, as one user meets them.
struct PortReport {
    SystemRoots roots;
    User user;
    bool lists_ports = false;
    std::vector<InspectedPort> ports;
    bool has_lock_folder = false;
    QStringList services; ///< that run and are known to open ports by themselves
    int unseen_processes = 0;
};

PortReport report_on_ports(const SystemRoots& roots, const User& user);

/// What keeps the user from the ports, or slows them down.
std::vector<Problem> lint_ports(const PortReport& report);

QJsonObject json_of(const PortReport& report);
void print(TextPage& page, const PortReport& report);

} // namespace inspect
