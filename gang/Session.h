#pragma once

#include "gang/Arguments.h"
#include "gang/Assignment.h"
#include "gang/Crew.h"
#include "gang/Display.h"
#include "gang/Inputs.h"
#include "gang/NumberFile.h"
#include "gang/PortWatch.h"
#include "gang/RecordFile.h"
#include "process/SignalEvents.h"

#include <QObject>

#include <memory>
#include <optional>

namespace gang
{

/// How the program ends.
enum ExitStatus : int { ExitAllOk = 0, ExitSomeNot = 1, ExitNotStarted = 2, ExitInterrupted = 3 };

/// One invocation: from the arguments to the exit status.
class Session : public QObject
{
    Q_OBJECT

public:
    /// Checks everything that can be checked before any device is touched. Throws ArgumentError or
    /// FileError.
    explicit Session(const Arguments& arguments);

    int run();

private:
    void prepare_numbers();
    void prepare_folders();
    void take_stop();
    void end_if_idle();
    int status() const;

    const Arguments& m_arguments;
    Inputs m_inputs;
    std::optional<Platform::SignalEvents> m_signals;
    std::optional<NumberFile> m_numbers;
    std::optional<RecordFile> m_record;
    std::unique_ptr<Display> m_display;
    std::optional<Assignment> m_assignment;
    std::unique_ptr<Crew> m_crew;
    std::unique_ptr<PortWatch> m_watch;
    QStringList m_troubles;
    int m_stops = 0; ///< how often somebody asked the gang to end
};

/// Prints a line on standard error.
void complain(const QString& text);

} // namespace gang
