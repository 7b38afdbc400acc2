#pragma once

#include <QByteArray>
#include <QString>

namespace gang
{

/// A pipe for the output of a process, read at intervals. zserial prints its progress after every
/// row; waking up each time would cost more than everything else that a gang does.
class OutputPipe
{
public:
    /// is_open() is false if the system provides no pipe.
    OutputPipe();
    ~OutputPipe();
    OutputPipe(const OutputPipe&) = delete;
    OutputPipe& operator=(const OutputPipe&) = delete;

    bool is_open() const { return m_reader >= 0; }

    /// Returns the name by which this process can open the write end.
    QString writer() const;
    /// Call this once the writing process has opened its end.
    void close_writer();

    /// Returns the output since the last call. Does not block.
    QByteArray take();

private:
    int m_reader = -1;
    int m_writer = -1;
};

} // namespace gang
