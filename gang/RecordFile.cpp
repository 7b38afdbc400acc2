#include "gang/RecordFile.h"

#include <QJsonDocument>

namespace gang
{

void RecordFile::append(const RunRecord& record)
{
    const QByteArray line = QJsonDocument(json_of(record)).toJson(QJsonDocument::Compact);
    const SharedFile::Lock lock(m_file);
    m_file.append(line);
}

} // namespace gang
