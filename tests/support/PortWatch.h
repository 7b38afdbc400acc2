#pragma once

#include <QDir>
#include <QFileInfo>
#include <QString>

#include <algorithm>
#include <utility>

namespace test
{

/// Detects whether this process has opened a port since the watch began.
class PortWatch
{
public:
    explicit PortWatch(QString path) : m_path(std::move(path)), m_before(descriptors()) {}

    bool is_open() const { return descriptors() > m_before; }

private:
    std::ptrdiff_t descriptors() const
    {
        const QFileInfoList all =
            QDir(QStringLiteral("/proc/self/fd"))
                .entryInfoList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
        return std::count_if(all.begin(), all.end(),
                             [&](const QFileInfo& info) { return info.symLinkTarget() == m_path; });
    }

    QString m_path;
    std::ptrdiff_t m_before;
};

} // namespace test
