#include "gang/SharedFile.h"

#include "gang/FileSystem.h"

#include <QDeadlineTimer>
#include <QThread>

namespace gang
{

namespace
{

constexpr int longest_wait_ms = 10000;
constexpr unsigned long retry_ms = 2;

} // namespace

SharedFile::Lock::Lock(SharedFile& file) : m_file(file)
{
    const QDeadlineTimer deadline(longest_wait_ms);
    while (!try_lock(m_file.m_file)) {
        if (deadline.hasExpired()) {
            m_file.fail(QStringLiteral("another program keeps it locked"));
        }
        QThread::msleep(retry_ms);
    }
}

SharedFile::Lock::~Lock()
{
    unlock(m_file.m_file);
}

SharedFile::SharedFile(const QString& path, Missing if_missing) : m_path(path), m_file(path)
{
    QIODevice::OpenMode mode = QIODevice::ReadWrite | QIODevice::Unbuffered;
    if (if_missing == Missing::Refuse) {
        mode |= QIODevice::ExistingOnly;
    }
    if (!m_file.open(mode)) {
        fail(m_file.errorString());
    }
}

void SharedFile::fail(const QString& reason) const
{
    throw FileError(QStringLiteral("%1: %2").arg(m_path, reason));
}

QByteArray SharedFile::read_from(qint64 position)
{
    const qint64 size = m_file.size();
    if (size < position) {
        fail(QStringLiteral("was cut short while in use"));
    }
    if (!m_file.seek(position)) {
        fail(m_file.errorString());
    }
    QByteArray bytes = m_file.readAll();
    if (bytes.size() != size - position) {
        fail(QStringLiteral("cannot be read: %1").arg(m_file.errorString()));
    }
    return bytes;
}

bool SharedFile::ends_in_mid_line()
{
    char last = '\n';
    return m_file.size() > 0 && m_file.seek(m_file.size() - 1) && m_file.getChar(&last) &&
           last != '\n';
}

void SharedFile::write_at_end(const QByteArray& bytes)
{
    const qint64 end = m_file.size();
    const bool written =
        m_file.seek(end) && m_file.write(bytes) == bytes.size() && flush_to_disk(m_file);
    if (!written) {
        const QString reason = m_file.errorString();
        m_file.resize(end);
        fail(reason);
    }
}

void SharedFile::append(const QByteArray& line)
{
    write_at_end((ends_in_mid_line() ? "\n" : "") + line + '\n');
}

void SharedFile::end_line()
{
    if (ends_in_mid_line()) {
        write_at_end("\n");
    }
}

void SharedFile::truncate(qint64 position)
{
    if (!m_file.resize(position) || !flush_to_disk(m_file)) {
        fail(m_file.errorString());
    }
}

bool SharedFile::is_at_its_path() const
{
    return identity_of(m_path).is_same_node(identity_of(m_file));
}

void SharedFile::require_same_file() const
{
    if (!is_at_its_path()) {
        fail(QStringLiteral("was replaced or removed while in use"));
    }
}

} // namespace gang
