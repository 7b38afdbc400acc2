#pragma once

#include <QtGlobal>

class QByteArray;
class QFile;

/// Questions and requests to the operating system. The tool's other sources do not include its
/// headers.
namespace Platform
{

/// Opens those of standard input, output and error that the process was started without on a device
/// that discards everything, so that no file or port that is opened later gets their descriptors
/// and receives what is printed. To be called before anything is opened.
void occupy_standard_descriptors();

/// From here on, writing to a pipe whose reader has gone away, or to a file that must not grow any
/// further, fails instead of ending the process.
void let_impossible_writes_fail();

/// Reads up to `size` bytes from the open file's current position, past its buffer. Waits while
/// there is nothing to read, and no longer. 0 at the end of the file, -1 for an error.
qint64 read_available(QFile& file, char* data, qint64 size);

enum class StandardStream { Output, Error };

/// How writing to a stream has ended.
enum class WriteOutcome {
    Complete,
    ReaderGone, ///< the reader has closed the pipe
    Failed,
};

/// Writes all of `bytes`, past any buffer. Waits while the stream accepts nothing.
WriteOutcome write_all(StandardStream stream, const QByteArray& bytes);

/// Whether the stream is a terminal. False where the system cannot be asked.
bool is_terminal(StandardStream stream);

/// Whether the device that the open `descriptor` (QSerialPort::handle()) stands for has gone away.
/// True as well where the system cannot be asked.
bool has_hung_up(qintptr descriptor);

} // namespace Platform
