#include "inspect/InputFile.h"

#include <QFileInfo>

namespace inspect
{

InputFile::InputFile(const QString& path) : m_file(path)
{
    const QFileInfo info(path);
    if (!info.exists()) {
        m_reason = QStringLiteral("there is no such file");
    } else if (!info.isFile()) {
        m_reason = QStringLiteral("it is not a regular file");
    } else if (!m_file.open(QIODevice::ReadOnly)) {
        m_reason = m_file.errorString();
    }
}

} // namespace inspect
