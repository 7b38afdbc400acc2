#pragma once

#include <QList>
#include <QString>

namespace inspect
{

/// Who wants to open a port.
struct User {
    QString name;
    unsigned int id = 0;
    QList<unsigned int> groups;
    bool is_current = true; ///< the one who runs this program

    bool is_root() const { return id == 0; }
};

/// The user who runs this program.
User current_user();
/// A user of this system. Throws UsageError when there is none of the name.
User user_named(const QString& name);

/// Whether a user may open a device file for reading and writing.
struct PortAccess {
    bool exists = false;
    bool is_open_to_user = false;
    QString mode;  ///< "0660"
    QString owner; ///< name of the file's owner, or the number where it has no name
    QString group; ///< likewise
    bool group_has_name = false;
    QString through; ///< "root", "owner", "group dialout", "everybody", "an access list"; or empty
    bool group_may = false; ///< members of the group may open it
};

PortAccess access_to(const QString& path, const User& user);

} // namespace inspect
