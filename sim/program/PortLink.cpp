#include "sim/program/PortLink.h"

#include "sim/device/Error.h"

#include <QFile>
#include <QFileInfo>

namespace sim
{

namespace
{

/// The number of a pseudo-terminal may have been reused, so its existence proves nothing.
bool is_left_behind(const QFileInfo& file)
{
    return file.isSymLink() &&
           (!file.exists() || file.symLinkTarget().startsWith(QLatin1String("/dev/pts/")));
}

} // namespace

PortLink::PortLink(const QString& path, const QString& port_path)
    : m_path(path),
      m_port_path(port_path)
{
    const QFileInfo file(path);
    if (is_left_behind(file)) {
        QFile::remove(path);
    } else if (file.exists()) {
        throw Error(
            QStringLiteral("--link %1: the file exists and is not a link to a pseudo-terminal")
                .arg(path));
    }
    QFile port(port_path);
    if (!port.link(path)) {
        throw Error(
            QStringLiteral("--link %1: cannot create the link: %2").arg(path, port.errorString()));
    }
}

PortLink::~PortLink()
{
    if (QFileInfo(m_path).symLinkTarget() == m_port_path) {
        QFile::remove(m_path);
    }
}

} // namespace sim
