#include "gang/RecordFile.h"

#include <QJsonDocument>

namespace gang
{

namespace
{

/// How often the file may be replaced while a run is being recorded.
constexpr int most_replacements = 100;

} // namespace

RecordFile::RecordFile(const QString& path) : m_path(path)
{
    const SharedFile file(path, SharedFile::Missing::Create);
}

/// Opens the file for each line: a record that has been renamed or removed gets no further line.
void RecordFile::append(const RunRecord& record)
{
    const QByteArray line = QJsonDocument(json_of(record)).toJson(QJsonDocument::Compact);
    for (int i = 0; i < most_replacements; ++i) {
        SharedFile file(m_path, SharedFile::Missing::Create);
        const SharedFile::Lock lock(file);
        if (file.is_at_its_path()) {
            file.append(line);
            return;
        }
    }
    throw FileError(QStringLiteral("%1: another program keeps replacing it").arg(m_path));
}

} // namespace gang
