#pragma once

#include <QString>

namespace sim
{

/// A symbolic link that gives a port a name of the user's choice for as long as it lives.
class PortLink
{
public:
    /// Replaces a link that another simulator has left: one that is dangling or leads to a
    /// pseudo-terminal. Throws Error if anything else is there, or if the link cannot be made.
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
