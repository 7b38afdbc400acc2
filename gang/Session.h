#pragma once

#include "gang/Arguments.h"
#include "gang/Assignment.h"
#include "gang/Display.h"
#include "gang/Inputs.h"
#include "gang/NumberFile.h"
#include "gang/PortWatch.h"
#include "gang/RecordFile.h"
#include "gang/UploadQueue.h"
#include "process/SignalEvents.h"

#include <QObject>

#include <memory>
#include <optional>

namespace gang
{

/// The exit statuses of zserial-gang.
enum ExitStatus : int { ExitAllOk = 0, ExitSomeNot = 1, ExitNotStarted = 2, ExitInterrupted = 3 };

/// One invocation of zserial-gang, from the arguments to the exit status. It checks everything that
/// needs no device; then a UploadQueue starts a PortRun for each device, which runs zserial
/// processes. Table and images are read once, before the first upload, so that all devices get the
/// same data; a verdict is shown only after it has been recorded on the disk. docs/production.md
/// documents the formats of events, records, reports and the serial file.
class Session : public QObject
{
    Q_OBJECT

public:
    /// Checks the arguments, reads the table and the images, and opens the record and the serial
    /// file, without touching a device. `arguments` must outlive the session. Throws ArgumentError
    /// or FileError.
    explicit Session(const Arguments& arguments);

    int run();

private:
    void prepare_numbers();
    void prepare_folders();
    void on_stop_requested();
    void end_if_idle();
    int status() const;

    const Arguments& m_arguments;
    Inputs m_inputs;
    std::optional<Platform::SignalEvents> m_signals;
    std::optional<NumberFile> m_numbers;
    std::optional<RecordFile> m_record;
    std::unique_ptr<Display> m_display;
    std::optional<Assignment> m_assignment;
    std::unique_ptr<UploadQueue> m_queue;
    std::unique_ptr<PortWatch> m_watch;
    QStringList m_troubles;
    int m_stops = 0; ///< number of requests to stop
};

/// Prints a line to standard error, prefixed with the program name.
void print_error(const QString& text);

} // namespace gang
