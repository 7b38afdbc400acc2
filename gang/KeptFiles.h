#pragma once

#include "gang/ToolEnd.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

namespace gang
{

/// The folder in which console and frame log of one run stay: console.txt and frames.log.
class KeptFiles
{
public:
    /// Nothing is kept.
    KeptFiles() = default;
    /// Makes a new folder for the run in `parent`. Throws FileError.
    KeptFiles(const QString& parent, const QString& port_name, const QDateTime& time);

    /// Empty if nothing is kept.
    const QString& folder() const { return m_folder; }

    /// The arguments that make the tool log its frames there; none if nothing is kept.
    QStringList frame_log_arguments() const;
    /// Appends what a process printed. A console that cannot be kept does not change a verdict.
    void add_console(const QStringList& words, const ToolEnd& end) const;
    void discard();

private:
    QString m_folder;
};

} // namespace gang
