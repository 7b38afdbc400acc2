#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

#include <stdexcept>

namespace gang
{

/// A file that cannot be used; what() names it and says why.
class FileError : public std::runtime_error
{
public:
    explicit FileError(const QString& text) : std::runtime_error(text.toStdString()) {}
};

/// A text file of whole lines to which several processes append. The system holds its lock for the
/// open file, so a process that is killed leaves no lock behind.
class SharedFile
{
public:
    /// Holds the file locked as long as it lives.
    class Lock
    {
    public:
        /// Waits for the others. Throws FileError if one of them does not let go for ten seconds.
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

    /// All of it from a position on. Throws FileError, also if there is less by now. Needs the
    /// lock.
    QByteArray read_from(qint64 position);

    /// Appends a line, given without its line end, and returns once it is on the disk. What a
    /// killed or failed writer left without a line end becomes a line of its own. Throws FileError
    /// if the line is not on the disk as a whole, and takes back what was written of it. Needs the
    /// lock.
    void append(const QByteArray& line);

    /// Removes everything from a position on. Needs the lock.
    void cut(qint64 position);
    /// Ends a last line that has no line end. Needs the lock.
    void end_line();
    /// The name still leads to this file.
    bool has_its_name() const;
    /// Throws FileError if the name leads to another file by now, or to none.
    void require_same_file() const;

private:
    [[noreturn]] void fail(const QString& reason) const;
    bool ends_in_mid_line();
    void write_at_end(const QByteArray& bytes);

    QString m_path;
    QFile m_file;
};

} // namespace gang
