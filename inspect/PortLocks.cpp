#include "inspect/PortLocks.h"

#include "inspect/SmallFile.h"

#include <QFileInfo>
#include <QList>

namespace inspect
{

namespace
{

/// The uploader's port library names the lock after the path below /dev.
QString lock_name(const QString& path, const SystemRoots& roots)
{
    return QStringLiteral("LCK..") +
           path.mid(roots.dev.size() + 1).replace(QLatin1Char('/'), QLatin1Char('_'));
}

/// A process has the name under which its program was started, such as that of a link, and the
/// kernel cuts it. A lock names the program.
bool runs_program(const Processes& processes, qint64 id, const QByteArray& program)
{
    constexpr int longest_name = 15;
    return processes.program_of(id).toUtf8() == program ||
           processes.name_of(id).toUtf8() == program.left(longest_name);
}

/// Other programs write the process alone. The uploader's library adds the program's name, host,
/// machine and boot; a process of another name, or an earlier boot, is not the one that locked.
bool has_ended(const QList<QByteArray>& lines, const Process& owner, const SystemRoots& roots,
               const Processes& processes)
{
    constexpr int name_line = 1;
    constexpr int boot_line = 4;
    const QByteArray boot = small_file(roots.proc + QStringLiteral("/sys/kernel/random/boot_id"));
    const QByteArray locked_by = lines.value(name_line).trimmed();
    const QByteArray locked_in = lines.value(boot_line).trimmed();
    return processes.name_of(owner.id).isEmpty() ||
           (!locked_by.isEmpty() && !runs_program(processes, owner.id, locked_by)) ||
           (!locked_in.isEmpty() && !boot.isEmpty() && locked_in != boot);
}

PortLock read_lock(const QString& path, const SystemRoots& roots, const Processes& processes)
{
    const QList<QByteArray> lines = small_file(path).split('\n');
    bool is_number = false;
    const qint64 id = lines.first().trimmed().toLongLong(&is_number);
    if (!is_number || id <= 0) {
        return {path, std::nullopt, false, false};
    }
    const Process owner{id, QString::fromUtf8(lines.value(1).trimmed())};
    const bool is_stale = has_ended(lines, owner, roots, processes);
    return {path, Process{id, is_stale ? owner.name : processes.name_of(id)}, is_stale,
            !owner.name.isEmpty()};
}

} // namespace

std::vector<PortLock> locks_on(const SerialPort& port, const SystemRoots& roots,
                               const Processes& processes)
{
    std::vector<PortLock> locks;
    QStringList seen; // one folder may be a link to another
    for (const QString& name : port.by_id + QStringList(port.path)) {
        for (const QString& folder : roots.locks) {
            const QFileInfo file(folder + QLatin1Char('/') + lock_name(name, roots));
            if (file.isFile() && !seen.contains(file.canonicalFilePath())) {
                seen << file.canonicalFilePath();
                locks.push_back(read_lock(file.filePath(), roots, processes));
            }
        }
    }
    return locks;
}

QString lock_folder(const SystemRoots& roots)
{
    for (const QString& folder : roots.locks) {
        const QFileInfo info(folder);
        if (info.isDir() && info.isReadable() && info.isWritable()) {
            return folder;
        }
    }
    return {};
}

} // namespace inspect
