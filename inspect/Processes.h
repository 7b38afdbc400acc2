#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace inspect
{

struct Process {
    qint64 id;
    QString name;
};

/// A process that has a file open.
struct Holder {
    Process process;
    QString path; ///< of the file
};

/// The processes that run, as /proc shows them.
class Processes
{
public:
    /// Looks at all of them once. `paths`: files whose holders are of interest.
    Processes(const QString& proc, const QStringList& paths);

    /// The name of a running process; empty when there is none of this id.
    QString name_of(qint64 id) const;
    /// The file name of the program that a process runs, which need not be the name of the process;
    /// empty where this user may not see it.
    QString program_of(qint64 id) const;
    bool runs(const QString& name) const;
    std::vector<Process> holders_of(const QString& path) const;

    /// Processes whose open files this user may not see.
    int unseen() const { return m_unseen; }

private:
    void look_at_files(const QString& folder, const Process& process, const QStringList& paths);

    QString m_proc;
    std::vector<Process> m_all;
    std::vector<Holder> m_holders;
    int m_unseen = 0;
};

} // namespace inspect
