#include "inspect/PortAccess.h"

#include "inspect/UsageError.h"

#include <QFileInfo>

#include <algorithm>
#include <vector>

#ifdef Q_OS_UNIX
#include <grp.h>
#include <pwd.h>
#include <unistd.h>
#endif

namespace inspect
{

namespace
{

bool may_use(QFileDevice::Permissions given, QFileDevice::Permissions needed)
{
    return (given & needed) == needed;
}

QString octal(QFileDevice::Permissions permissions)
{
    // Qt writes a hexadecimal digit for each of user, group and others.
    const auto bits = static_cast<unsigned int>(permissions);
    const unsigned int mode = ((bits >> 12U) & 7U) << 6U | ((bits >> 4U) & 7U) << 3U | (bits & 7U);
    return QStringLiteral("0%1").arg(mode, 3, 8, QLatin1Char('0'));
}

/// In a container, the numbers of another system often have no name.
QString name_or_number(const QString& name, unsigned int id)
{
    return name.isEmpty() ? QString::number(id) : name;
}

/// As the system decides by mode: the first of owner, group and others that the user is counts.
QString way_by_mode(const QFileInfo& file, const User& user)
{
    const QFileDevice::Permissions given = file.permissions();
    if (user.is_root()) {
        return QStringLiteral("root");
    }
    if (file.ownerId() == user.id) {
        return may_use(given, QFileDevice::ReadOwner | QFileDevice::WriteOwner)
                   ? QStringLiteral("owner")
                   : QString();
    }
    if (user.groups.contains(file.groupId())) {
        return may_use(given, QFileDevice::ReadGroup | QFileDevice::WriteGroup)
                   ? QStringLiteral("group ") + name_or_number(file.group(), file.groupId())
                   : QString();
    }
    return may_use(given, QFileDevice::ReadOther | QFileDevice::WriteOther)
               ? QStringLiteral("everybody")
               : QString();
}

} // namespace

#ifdef Q_OS_UNIX

namespace
{

QString user_name(unsigned int id)
{
    const passwd* const entry = ::getpwuid(id);
    return entry == nullptr ? QString::number(id) : QString::fromLocal8Bit(entry->pw_name);
}

QList<unsigned int> as_list(const std::vector<gid_t>& groups)
{
    return QList<unsigned int>(groups.begin(), groups.end());
}

} // namespace

User current_user()
{
    std::vector<gid_t> groups(static_cast<std::size_t>(std::max(0, ::getgroups(0, nullptr))));
    groups.resize(static_cast<std::size_t>(
        std::max(0, ::getgroups(static_cast<int>(groups.size()), groups.data()))));
    groups.push_back(::getegid());
    return {user_name(::geteuid()), ::geteuid(), as_list(groups), true};
}

User user_named(const QString& name)
{
    const QByteArray bytes = name.toLocal8Bit();
    const passwd* const entry = ::getpwnam(bytes.constData());
    if (entry == nullptr) {
        throw UsageError(QStringLiteral("there is no user %1").arg(name));
    }
    const User user{name, entry->pw_uid, {}, false};
    const gid_t own_group = entry->pw_gid;
    int count = 0;
    ::getgrouplist(bytes.constData(), own_group, nullptr, &count);
    std::vector<gid_t> groups(static_cast<std::size_t>(count));
    ::getgrouplist(bytes.constData(), own_group, groups.data(), &count);
    return {user.name, user.id, as_list(groups), false};
}

#else

User current_user()
{
    return {};
}

User user_named(const QString& name)
{
    throw UsageError(QStringLiteral("there is no user %1").arg(name));
}

#endif

PortAccess access_to(const QString& path, const User& user)
{
    const QFileInfo file(path);
    PortAccess access;
    access.exists = file.exists();
    if (!access.exists) {
        return access;
    }
    access.mode = octal(file.permissions());
    access.owner = name_or_number(file.owner(), file.ownerId());
    access.group = name_or_number(file.group(), file.groupId());
    access.group_has_name = !file.group().isEmpty();
    access.group_may =
        may_use(file.permissions(), QFileDevice::ReadGroup | QFileDevice::WriteGroup);
    access.through = way_by_mode(file, user);
    access.is_open_to_user =
        user.is_current ? file.isReadable() && file.isWritable() : !access.through.isEmpty();
    if (!access.is_open_to_user) {
        access.through.clear();
    } else if (access.through.isEmpty()) {
        access.through = QStringLiteral("an access list");
    }
    return access;
}

} // namespace inspect
