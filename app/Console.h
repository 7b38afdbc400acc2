#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QFile>
#include <QString>
#include <QTextStream>

// The output channels of the tool and the functions that the device's signals end in. They are
// process-wide because they must exist before main() and until the very end of the process, however
// it ends.

/// The application object, created first in main().
extern QCoreApplication* a;
/// Standard output, buffered: what is written appears when it is flushed, when 16 KiB have
/// accumulated, or when the process exits.
extern QTextStream out;
/// The frame log; closed, and then not written, unless the command line names one.
extern QFile serial_record;

/// Makes the application object, with the event dispatcher that costs the least per command.
void make_application(int& argc, char** argv);
/// Destroys it, and with it the connections of the device's signals to the functions below.
void end_application();

/// Prints an error line at once, ahead of whatever `out` still holds.
void slot_error(QString error);
/// Rewrites the progress line at once. Counts are bytes; the percentage is worked out in 32 bits.
void slot_progress(unsigned int processed, unsigned int total);
/// Opens the frame log to append to it.
bool open_frame_log(const QString& name);
/// Append a frame to the frame log.
void slot_command_received(QByteArray frame);
void slot_command_transmitted(QByteArray frame);
/// Processes the application's pending events once; the device calls it while it polls.
void process_events_handler();
/// How long a run stays after its last step.
inline constexpr int closing_ms = 1000;
/// Processes events for at least that time, so that bytes in flight leave before the port is
/// closed.
void let_pending_events_pass();

/// Writes the usage text to the console.
void print_syntax();
