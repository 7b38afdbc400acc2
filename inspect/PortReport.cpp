#include "inspect/PortReport.h"

namespace inspect
{

namespace
{

/// As processes know the device file, also where the tree is a copy of their system's.
QString system_path(const SerialPort& port)
{
    return QStringLiteral("/dev/") + port.name;
}

QStringList paths_of(const std::vector<SerialPort>& ports)
{
    QStringList paths;
    for (const SerialPort& port : ports) {
        paths << system_path(port);
    }
    return paths;
}

} // namespace

PortReport report_on_ports(const SystemRoots& roots, const User& user)
{
    PortReport report;
    report.roots = roots;
    report.user = user;
    report.lists_ports = lists_ports(roots);
    const std::vector<SerialPort> ports = serial_ports(roots);
    const Processes processes(roots.proc, paths_of(ports));
    for (const SerialPort& port : ports) {
        report.ports.push_back({port, access_to(port.path, user),
                                processes.holders_of(system_path(port)),
                                locks_on(port, roots, processes)});
    }
    report.has_lock_folder = !lock_folder(roots).isEmpty();
    for (const char* service : {"ModemManager", "brltty"}) {
        if (processes.runs(QLatin1String(service))) {
            report.services << QLatin1String(service);
        }
    }
    report.unseen_processes = processes.unseen();
    return report;
}

} // namespace inspect
