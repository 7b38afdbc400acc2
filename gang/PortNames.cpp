#include "gang/PortNames.h"

#include <QDir>
#include <QFileInfo>
#include <QSerialPortInfo>

namespace gang
{

namespace
{

/// True if Qt Serial Port resolves the name relative to the working folder.
bool is_relative(const QString& port)
{
    return port.startsWith(QLatin1String("./")) || port.startsWith(QLatin1String("../"));
}

} // namespace

PortNames names_of(const QString& port, int n)
{
    QString name = port;
    if (name.startsWith(QLatin1String("/dev/"))) {
        name.remove(0, 5);
        name.replace(QLatin1Char('/'), QLatin1Char('_'));
    } else {
        name = QFileInfo(port).fileName();
    }
    return {is_relative(port) ? file_of_port(port) : port, name, n};
}

/// Leaves a path with ".." as it is: "link/.." is not always the folder that holds "link".
QString absolute_name(const QString& file)
{
    const QString name = QDir::current().absoluteFilePath(file);
    return name.contains(QLatin1String("..")) ? name : QDir::cleanPath(name);
}

QString file_of_port(const QString& port)
{
    if (port.startsWith(QLatin1Char('/'))) {
        return port;
    }
    if (is_relative(port)) {
        return absolute_name(port);
    }
    return QStringLiteral("/dev/") + port;
}

/// Works in one pass: a placeholder in the name of a port is not replaced.
QString expand(const QString& text, const PortNames& names)
{
    QString expanded;
    for (int i = 0; i < text.size();) {
        const QStringRef rest = text.midRef(i);
        if (rest.startsWith(QLatin1String("{port}"))) {
            expanded += names.path;
            i += 6;
        } else if (rest.startsWith(QLatin1String("{name}"))) {
            expanded += names.name;
            i += 6;
        } else if (rest.startsWith(QLatin1String("{n}"))) {
            expanded += QString::number(names.n);
            i += 3;
        } else {
            expanded += text.at(i++);
        }
    }
    return expanded;
}

Adapter adapter_on(const QString& port)
{
    const QString device = QFileInfo(file_of_port(port)).canonicalFilePath();
    const QSerialPortInfo info(QFileInfo(device).fileName());
    const QString name =
        QStringList{info.manufacturer(), info.description()}.join(QLatin1Char(' ')).trimmed();
    return {name, info.serialNumber()};
}

} // namespace gang
