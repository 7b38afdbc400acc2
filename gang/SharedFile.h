#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

#include <stdexcept>

namespace gang
{

/// A file cannot be used; what() names it and explains why.
class FileError : public std::runtime_error
{
public:
    explicit FileError(const QString& text) : std::runtime_error(text.toStdString()) {}
};

/// A text file to which several processes append whole lines. Its lock belongs to the open file, so
/// the system releases it when a process is killed.
class SharedFile
{
public:
    /// Locks the file for the lifetime of the object.
    class Lock
    {
    public:
        /// Waits for the lock. Throws FileError if another program holds it for ten seconds.
        explicit Lock(SharedFile& file);
        ~Lock();
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

    private:
        SharedFile& m_file;
    };

    enum class Missing { Create, Refuse };

    /// Opens the file. Throws FileError.
    SharedFile(const QString& path, Missing if_missing);

    const QString& path() const { return m_path; }

    /// Returns the contents from byte `position` on. Throws FileError if they cannot be read or the
    /// file has become shorter. Needs the lock.
    QByteArray read_from(qint64 position);

    /// Appends a line, passed without its line end, and returns once it is on the disk. An
    /// incomplete last line, left by a killed or failed writer, becomes a line of its own. If the
    /// line cannot be written as a whole, removes what was written of it and throws FileError.
    /// Needs the lock.
    void append(const QByteArray& line);

    /// Truncates the file to `position` bytes. Throws FileError. Needs the lock.
    void truncate(qint64 position);
    /// Terminates an incomplete last line. Throws FileError. Needs the lock.
    void end_line();
    /// True if the name still leads to this file.
    bool is_at_its_path() const;
    /// Throws FileError if the name no longer leads to this file.
    void require_same_file() const;

private:
    [[noreturn]] void fail(const QString& reason) const;
    bool ends_in_mid_line();
    void write_at_end(const QByteArray& bytes);

    QString m_path;
    QFile m_file;
};

} // namespace gang
