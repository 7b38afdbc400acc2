#include "inspect/Figures.h"
#include "inspect/PortReport.h"

#include <QJsonArray>

namespace inspect
{

namespace
{

QJsonValue text_or_null(const QString& text)
{
    return text.isEmpty() ? QJsonValue() : QJsonValue(text);
}

QJsonObject json_of(const Process& process)
{
    return {{QStringLiteral("pid"), process.id}, {QStringLiteral("process"), process.name}};
}

QJsonObject json_of(const PortLock& lock)
{
    return {{QStringLiteral("file"), lock.path},
            {QStringLiteral("pid"), lock.owner ? QJsonValue(lock.owner->id) : QJsonValue()},
            {QStringLiteral("process"), lock.owner ? text_or_null(lock.owner->name) : QJsonValue()},
            {QStringLiteral("stale"), lock.is_stale}};
}

QJsonValue json_of(const PortAccess& access)
{
    if (!access.exists) {
        return QJsonValue();
    }
    return QJsonObject{{QStringLiteral("may_open"), access.is_open_to_user},
                       {QStringLiteral("through"), text_or_null(access.through)},
                       {QStringLiteral("mode"), access.mode},
                       {QStringLiteral("owner"), access.owner},
                       {QStringLiteral("group"), access.group}};
}

QJsonObject json_of(const InspectedPort& inspected);

template <typename Items>
QJsonArray list_of(const Items& items)
{
    QJsonArray list;
    for (const auto& item : items) {
        list.append(json_of(item));
    }
    return list;
}

QJsonObject json_of(const InspectedPort& inspected)
{
    const SerialPort& port = inspected.port;
    return {
        {QStringLiteral("name"), port.name},
        {QStringLiteral("path"), port.path},
        {QStringLiteral("by_id"), QJsonArray::fromStringList(port.by_id)},
        {QStringLiteral("description"), text_or_null(port.description)},
        {QStringLiteral("manufacturer"), text_or_null(port.manufacturer)},
        {QStringLiteral("vendor_id"), text_or_null(port.vendor_id)},
        {QStringLiteral("product_id"), text_or_null(port.product_id)},
        {QStringLiteral("serial_number"), text_or_null(port.serial_number)},
        {QStringLiteral("driver"), text_or_null(port.driver)},
        {QStringLiteral("latency_ms"),
         port.latency_ms ? QJsonValue(*port.latency_ms) : QJsonValue()},
        {QStringLiteral("access"), json_of(inspected.access)},
        {QStringLiteral("holders"), list_of(inspected.holders)},
        {QStringLiteral("locks"), list_of(inspected.locks)},
    };
}

QString access_text(const PortAccess& access, const User& user)
{
    if (!access.exists) {
        return QStringLiteral("there is no such file");
    }
    const QString file =
        QStringLiteral("mode %1, owner %2, group %3").arg(access.mode, access.owner, access.group);
    return access.is_open_to_user
               ? QStringLiteral("%1 may open it, as %2 (%3)").arg(user.name, access.through, file)
               : QStringLiteral("%1 may not open it (%2)").arg(user.name, file);
}

QString adapter_text(const SerialPort& port)
{
    QStringList parts;
    for (const QString& part : {port.manufacturer, port.description}) {
        if (!part.isEmpty()) {
            parts << part;
        }
    }
    if (port.is_usb) {
        parts << QStringLiteral("USB %1:%2").arg(port.vendor_id, port.product_id);
    }
    if (!port.serial_number.isEmpty()) {
        parts << QStringLiteral("serial number %1").arg(port.serial_number);
    }
    return parts.join(QStringLiteral(", "));
}

QString process_text(const Process& process)
{
    return process.name.isEmpty()
               ? QStringLiteral("process %1").arg(process.id)
               : QStringLiteral("process %1 (%2)").arg(process.id).arg(process.name);
}

QString lock_text(const PortLock& lock)
{
    if (!lock.owner) {
        return QStringLiteral("%1, which names no process").arg(lock.path);
    }
    return QStringLiteral("%1 of %2, which %3")
        .arg(lock.path, process_text(*lock.owner),
             QLatin1String(lock.is_stale ? "has ended" : "runs"));
}

void print_known(TextPage& page, const char* label, const QString& text)
{
    if (!text.isEmpty()) {
        page.labelled(QLatin1String(label), text);
    }
}

void print(TextPage& page, const InspectedPort& inspected, const User& user)
{
    const SerialPort& port = inspected.port;
    page.heading(port.path);
    print_known(page, "adapter", adapter_text(port));
    print_known(page, "driver", port.driver);
    for (const QString& link : port.by_id) {
        page.labelled(QStringLiteral("by id"), link);
    }
    page.labelled(QStringLiteral("access"), access_text(inspected.access, user));
    for (const Process& holder : inspected.holders) {
        page.labelled(QStringLiteral("open in"), process_text(holder));
    }
    for (const PortLock& lock : inspected.locks) {
        page.labelled(QStringLiteral("lock file"), lock_text(lock));
    }
    if (port.latency_ms) {
        page.labelled(QStringLiteral("latency"), QStringLiteral("%1 ms").arg(*port.latency_ms));
    }
}

} // namespace

QJsonObject json_of(const PortReport& report)
{
    return {{QStringLiteral("ports"), list_of(report.ports)},
            {QStringLiteral("user"), report.user.name},
            {QStringLiteral("services"), QJsonArray::fromStringList(report.services)},
            {QStringLiteral("unseen_processes"), report.unseen_processes}};
}

void print(TextPage& page, const PortReport& report)
{
    for (const InspectedPort& port : report.ports) {
        print(page, port, report.user);
        page.line();
    }
    if (!report.lists_ports) {
        return;
    }
    page.paragraph(count_text(report.ports.size(), "serial port") + QLatin1Char('.'), 0);
    if (report.unseen_processes != 0) {
        page.paragraph(QStringLiteral("The open files of %1 of other users cannot be seen.")
                           .arg(report.unseen_processes == 1
                                    ? QStringLiteral("1 process")
                                    : QStringLiteral("%1 processes").arg(report.unseen_processes)),
                       0);
    }
}

} // namespace inspect
