#pragma once

#include <QFile>
#include <QString>

namespace inspect
{

/// An input file. Only regular files are opened: a pipe or a device may have no end.
class InputFile
{
public:
    explicit InputFile(const QString& path);

    bool is_open() const { return m_file.isOpen(); }

    /// Why it is not open.
    const QString& reason() const { return m_reason; }

    QFile& file() { return m_file; }

private:
    QFile m_file;
    QString m_reason;
};

} // namespace inspect
