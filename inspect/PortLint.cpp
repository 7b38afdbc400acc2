#include "inspect/PortReport.h"

#include <algorithm>

namespace inspect
{

namespace
{

/// Collects the problems of a system's ports.
class PortLint
{
public:
    explicit PortLint(const PortReport& report) : m_report(report) {}

    std::vector<Problem> problems()
    {
        if (!m_report.lists_ports) {
            add(Code::PortsUnknown,
                QStringLiteral("%1/class/tty is not there.").arg(m_report.roots.sys));
            return m_problems;
        }
        if (m_report.ports.empty()) {
            add(Code::NoPort, QStringLiteral("The system lists no serial port with hardware."));
        }
        for (const InspectedPort& port : m_report.ports) {
            lint(port);
        }
        lint_system();
        return m_problems;
    }

private:
    void lint(const InspectedPort& inspected)
    {
        m_path = inspected.port.path;
        lint_access(inspected);
        for (const Process& holder : inspected.holders) {
            add(Code::PortInUse,
                QStringLiteral("Process %1 (%2) has it open.").arg(holder.id).arg(holder.name));
        }
        for (const PortLock& lock : inspected.locks) {
            lint_lock(lock);
        }
        lint_adapter(inspected.port);
        m_path.clear();
    }

    void lint_access(const InspectedPort& inspected)
    {
        const PortAccess& access = inspected.access;
        if (!access.exists) {
            add(Code::NoDeviceFile,
                QStringLiteral("The system lists it, and the file is not there."));
        } else if (!access.is_open_to_user) {
            add(Code::NoPermission,
                QStringLiteral("User %1 may not read and write it (mode %2, owner %3, group %4).")
                    .arg(m_report.user.name, access.mode, access.owner, access.group),
                remedy_for(access));
        }
    }

    /// Only where the group would help; nobody should join the group of root.
    QString remedy_for(const PortAccess& access) const
    {
        if (access.group_may && !access.group_has_name) {
            return QStringLiteral("As root, name the group with groupadd -g %1 NAME and run "
                                  "usermod -aG NAME %2; then log in again.")
                .arg(access.group, m_report.user.name);
        }
        if (access.group_may && access.group != QLatin1String("root")) {
            return QStringLiteral("Run usermod -aG %1 %2 as root, and log in again.")
                .arg(access.group, m_report.user.name);
        }
        return QStringLiteral("Have a rule of udev give the port to a group, such as dialout, with "
                              "mode 0660, and add the user to it.");
    }

    void lint_lock(const PortLock& lock)
    {
        if (!lock.owner) {
            add(Code::LockedPort, QStringLiteral("%1 names no process.").arg(lock.path),
                QStringLiteral("Remove the file once no other program uses the port."),
                QStringLiteral("Cannot open the port within 30 s after the file was written; after "
                               "that, removes the file if its user may."));
            return;
        }
        const QString process =
            QStringLiteral("%1 names process %2%3, which ")
                .arg(lock.path)
                .arg(lock.owner->id)
                .arg(lock.owner->name.isEmpty() ? QString()
                                                : QStringLiteral(" (%1)").arg(lock.owner->name));
        if (lock.is_stale) {
            add(Code::StaleLock, process + QStringLiteral("has ended."));
        } else {
            add(Code::LockedPort, process + QStringLiteral("runs."), {},
                lock.names_program ? QString() : effect_of_foreign_lock());
        }
    }

    static QString effect_of_foreign_lock()
    {
        return QStringLiteral("Does not recognise a lock that names the process alone: removes the "
                              "file if its user may and opens the port, and each of the two "
                              "programs gets some of the bytes. If its user may not, ends with "
                              "\"Port ... cannot be opened. Aborting...\".");
    }

    void lint_adapter(const SerialPort& port)
    {
        if (port.latency_ms.value_or(0) > 1) {
            add(Code::LatencyTimer,
                QStringLiteral("Its latency timer is %1 ms.").arg(*port.latency_ms),
                QStringLiteral("As root, echo 1 >%1/bus/usb-serial/devices/%2/latency_timer; a "
                               "rule of udev does it for good.")
                    .arg(m_report.roots.sys, port.name));
        }
        if (port.is_usb && !port.is_left_alone && runs("ModemManager")) {
            add(Code::ProbingService,
                QStringLiteral("ModemManager runs, and no rule keeps it off this adapter."));
        }
    }

    void lint_system()
    {
        if (m_report.user.is_current && !m_report.has_lock_folder) {
            add(Code::NoLockFolder,
                QStringLiteral("User %1 may write to none of: %2.")
                    .arg(m_report.user.name, m_report.roots.locks.join(QStringLiteral(", "))));
        }
        if (runs("brltty")) {
            add(Code::BrailleService, QStringLiteral("brltty runs."));
        }
    }

    bool runs(const char* service) const
    {
        return m_report.services.contains(QLatin1String(service));
    }

    void add(Code code, const QString& message, const QString& remedy = {},
             const QString& uploader = {})
    {
        m_problems.push_back({code, message, {m_path, 0, 0}, uploader, remedy});
    }

    const PortReport& m_report;
    QString m_path; ///< of the port that is looked at
    std::vector<Problem> m_problems;
};

} // namespace

std::vector<Problem> lint_ports(const PortReport& report)
{
    return PortLint(report).problems();
}

} // namespace inspect
