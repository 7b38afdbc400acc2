#include "inspect/Processes.h"

#include "inspect/SmallFile.h"

#include <QDir>
#include <QFileInfo>
#include <QStringList>

#include <algorithm>

namespace inspect
{

Processes::Processes(const QString& proc, const QStringList& paths) : m_proc(proc)
{
    const QDir folder(proc);
    for (const QFileInfo& entry : folder.entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        bool is_process = false;
        const qint64 id = entry.fileName().toLongLong(&is_process);
        if (is_process) {
            const Process process{
                id, QString::fromUtf8(small_file(entry.filePath() + QStringLiteral("/comm")))};
            m_all.push_back(process);
            look_at_files(entry.filePath() + QStringLiteral("/fd"), process, paths);
        }
    }
}

/// A process may have a file open several times.
void Processes::look_at_files(const QString& folder, const Process& process,
                              const QStringList& paths)
{
    const QFileInfo info(folder);
    if (!info.isDir()) {
        return; // it has ended meanwhile
    }
    if (!info.isReadable() || !info.isExecutable()) {
        ++m_unseen;
        return;
    }
    QStringList found;
    const auto filter = QDir::Files | QDir::Dirs | QDir::System | QDir::NoDotAndDotDot;
    for (const QFileInfo& link : QDir(folder).entryInfoList(filter)) {
        const QString target = link.symLinkTarget();
        if (paths.contains(target) && !found.contains(target)) {
            found << target;
            m_holders.push_back({process, target});
        }
    }
}

QString Processes::name_of(qint64 id) const
{
    const auto found = std::find_if(m_all.begin(), m_all.end(),
                                    [id](const Process& process) { return process.id == id; });
    return found == m_all.end() ? QString() : found->name;
}

/// The kernel marks a program whose file has been replaced, such as by an update.
QString Processes::program_of(qint64 id) const
{
    const QString mark = QStringLiteral(" (deleted)");
    const QFileInfo link(QStringLiteral("%1/%2/exe").arg(m_proc).arg(id));
    QString name = QFileInfo(link.symLinkTarget()).fileName();
    if (name.endsWith(mark)) {
        name.chop(mark.size());
    }
    return name;
}

bool Processes::runs(const QString& name) const
{
    return std::any_of(m_all.begin(), m_all.end(),
                       [&](const Process& process) { return process.name == name; });
}

std::vector<Process> Processes::holders_of(const QString& path) const
{
    std::vector<Process> holders;
    for (const Holder& holder : m_holders) {
        if (holder.path == path) {
            holders.push_back(holder.process);
        }
    }
    return holders;
}

} // namespace inspect
