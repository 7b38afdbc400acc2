#pragma once

#include "fuzz/Target.h"

#include <QString>

#include <sys/mman.h>
#include <unistd.h>

/// A file in memory with a path, as the loader needs it.
class MemoryFile
{
public:
    MemoryFile() : m_descriptor(::memfd_create("image", 0)) { must_hold(m_descriptor >= 0); }

    ~MemoryFile() { ::close(m_descriptor); }

    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    QString path() const { return QStringLiteral("/proc/self/fd/%1").arg(m_descriptor); }

    void fill(const QByteArray& content) const
    {
        must_hold(::ftruncate(m_descriptor, 0) == 0);
        must_hold(::pwrite(m_descriptor, content.constData(),
                           static_cast<std::size_t>(content.size()), 0) == content.size());
    }

private:
    int m_descriptor;
};
