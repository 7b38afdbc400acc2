#pragma once

// This folder is the program zserial-sim. Only here are there option names, printing, signals and
// exit statuses. Nothing that a user could lose is touched until every request has proved possible,
// and the state is saved however a run ends. docs/simulator.md describes the options and the exit
// status; StateFile.h the format of a state.

#include "process/SignalEvents.h"
#include "sim/program/Arguments.h"
#include "sim/program/CommandRunner.h"
#include "sim/program/DeviceTable.h"
#include "sim/program/PortLink.h"
#include "sim/program/StateFile.h"
#include "sim/rig/MemoryImage.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <memory>
#include <optional>

namespace sim
{

/// How the program ends.
enum ExitStatus {
    ExitGood = 0,
    ExitFailed = 1,        ///< the check failed, or a file can't be written
    ExitCannot = 2,        ///< the command line can't be carried out
    ExitCommandFailed = 3, ///< the command did not start, or ended with a status other than 0
};

/// One run of the program: a device served from its table to its summary. Prints on standard output
/// and reports errors on standard error.
class Session : public QObject
{
    Q_OBJECT

public:
    /// Prepares everything. Throws an exception that says what cannot be done.
    explicit Session(const Arguments& arguments);

    /// Serves until the command ends or the program is stopped; returns the exit status.
    int run();

private:
    void set_up_rig();
    void refuse_clashes() const;
    void prepare_memory();
    void start_command();
    void stop();
    void end_command(const CommandEnd& end, const QString& complaint);
    void leave_when_quiet();
    void serve();
    bool save();
    bool save_state();
    bool save_image();
    bool sum_up();
    bool holds_what_it_should(const Summary& summary) const;
    bool give_out(const QString& text) const;
    int exit_status(bool is_good) const;

    Arguments m_arguments;
    DeviceTable m_table;
    const Profile& m_profile;
    std::optional<Rig> m_rig;
    std::optional<StateFile> m_state;
    std::optional<MemoryImage> m_expected;
    std::optional<Platform::SignalEvents> m_signals;
    std::unique_ptr<PortLink> m_link;
    std::unique_ptr<CommandRunner> m_command;
    QTimer m_quiet;
    QElapsedTimer m_since_command; ///< has ended
    qint64 m_heard_before = 0;     ///< bytes at the last check whether the line is quiet
    std::optional<CommandEnd> m_command_end;
    bool m_served = true; ///< to the end, without an unexpected error
};

} // namespace sim
