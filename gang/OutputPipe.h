#pragma once

#include <QByteArray>
#include <QString>

namespace gang
{

/// A pipe for what a process prints, read now and then. A tool prints its progress after every row;
/// to be woken by each of them would cost more than all else that a gang does.
class OutputPipe
{
public:
    /// Without a pipe if the system gives none.
    OutputPipe();
    ~OutputPipe();
    OutputPipe(const OutputPipe&) = delete;
    OutputPipe& operator=(const OutputPipe&) = delete;

    bool is_open() const { return m_reader >= 0; }

    /// The name by which this process opens the end to write to.
    QString writer() const;
    /// Once nobody else is to open it.
    void close_writer();

    /// What has come since the last time. Does not wait.
    QByteArray take();

private:
    int m_reader = -1;
    int m_writer = -1;
};

} // namespace gang
