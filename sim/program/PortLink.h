#pragma once

#include <QString>

namespace sim
{

/// A symbolic link that gives a port a name of the user's choice for as long as it lives.
class PortLink
{
public:
    /// Takes the place of a link that a simulator left behind: one that leads nowhere or to a
    /// pseudo-terminal. Throws Error when anything else is there, or when there can't be a
    /// link.
    PortLink(const QString& path, const QString& port_path);
    /// Removes the link, unless another simulator has taken its place.
    ~PortLink();

    PortLink(const PortLink&) = delete;
    PortLink& operator=(const PortLink&) = delete;
    PortLink(PortLink&&) = delete;
    PortLink& operator=(PortLink&&) = delete;

private:
    QString m_path;
    QString m_port_path;
};

} // namespace sim
