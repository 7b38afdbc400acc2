#include "gang/RunFolder.h"

#include "gang/SharedFile.h"

#include <QDir>
#include <QFile>

namespace gang
{

namespace
{

constexpr int most_folders_of_a_name = 1000;

/// mkdir() fails for an existing folder, so no two runs share one.
QString make_new_folder(const QString& parent, const QString& name)
{
    QDir folder(parent);
    for (int i = 1; i <= most_folders_of_a_name; ++i) {
        const QString candidate =
            i == 1 ? name : QStringLiteral("%1-%2").arg(name, QString::number(i));
        if (folder.mkdir(candidate)) {
            return folder.absoluteFilePath(candidate);
        }
    }
    throw FileError(QStringLiteral("cannot create the folder %1/%2").arg(parent, name));
}

} // namespace

RunFolder::RunFolder(const QString& parent, const QString& port_name, const QDateTime& time)
    : m_folder(
          make_new_folder(parent, time.toUTC().toString(QStringLiteral("yyyyMMdd'T'HHmmsszzz")) +
                                      QLatin1Char('-') + port_name))
{
}

QStringList RunFolder::frame_log_arguments() const
{
    if (m_folder.isEmpty()) {
        return {};
    }
    return {QStringLiteral("-x"), m_folder + QStringLiteral("/frames.log")};
}

void RunFolder::add_console(const QStringList& words, const ToolResult& result) const
{
    QFile file(m_folder + QStringLiteral("/console.txt"));
    if (m_folder.isEmpty() || !file.open(QIODevice::Append)) {
        return;
    }
    file.write("=== zserial " + words.join(QLatin1Char(' ')).toLocal8Bit() + '\n' + result.out +
               "\n=== standard error\n" + result.err +
               "=== " + (result.how == ToolResult::How::Exited ? "status " : "signal ") +
               QByteArray::number(result.code) + "\n\n");
}

void RunFolder::discard()
{
    if (!m_folder.isEmpty()) {
        QDir(m_folder).removeRecursively();
        m_folder.clear();
    }
}

} // namespace gang
