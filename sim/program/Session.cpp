#include "sim/program/Session.h"

#include "sim/device/Error.h"
#include "sim/line/Line.h"
#include "sim/program/Console.h"
#include "sim/program/FileClash.h"
#include "sim/rig/WholeFile.h"

#include <QCoreApplication>
#include <QJsonDocument>

#include <exception>

namespace sim
{

namespace
{

/// What a command wrote to its port just before it ended takes a moment to arrive.
constexpr int quiet_ms = 20;
/// A slow line needs this long for a few frames. Bytes that the command has left in the port, or
/// that one of its processes keeps sending, must not delay the end of the run.
constexpr int longest_wait_ms = 5000;

QString summary_text(const Summary& summary, bool json)
{
    if (json) {
        return QString::fromUtf8(QJsonDocument(json_of(summary)).toJson(QJsonDocument::Compact));
    }
    return text_of(summary).join(QLatin1Char('\n'));
}

/// Throws when the file can't be written.
void write_text(const QString& path, const QString& text)
{
    if (!write_whole_file(path, text.toUtf8())) {
        throw Error(QStringLiteral("cannot write the summary %1").arg(path));
    }
}

/// Error messages name the option that requested what cannot be done.
template <typename Action>
void for_option(const char* option, const Action& action)
{
    try {
        action();
    } catch (const Error& error) {
        throw Error(QString::fromLatin1(option) + QLatin1Char(' ') + error.text());
    }
}

/// Reports a failure on standard error.
template <typename Write>
bool succeeds(const Write& write)
{
    try {
        write();
        return true;
    } catch (const std::exception& failure) {
        complain(QString::fromUtf8(failure.what()));
        return false;
    }
}

} // namespace

Session::Session(const Arguments& arguments)
    : m_arguments(arguments),
      m_table(arguments.table),
      m_profile(m_table.choose(arguments.version))
{
    refuse_clashes();
    set_up_rig();
    prepare_memory();
    // Loaded before serving, so that a mistyped name shows at once.
    if (!arguments.check_image.isEmpty()) {
        m_expected.emplace(arguments.check_image);
    }
    // From here on nothing blocks, and whatever is created has to be removed at the end.
    m_signals.emplace();
    const QString port_path = m_rig->device().port_path();
    if (!arguments.link.isEmpty()) {
        m_link = std::make_unique<PortLink>(arguments.link, port_path);
    }
    if (!arguments.command.isEmpty()) {
        m_command = std::make_unique<CommandRunner>(arguments.command, port_path);
    }
    m_quiet.setSingleShot(true);
    connect(&m_quiet, &QTimer::timeout, this, &Session::leave_when_quiet);
    connect(&*m_signals, &Platform::SignalEvents::stop_requested, this, &Session::stop);
    // Last, because it truncates its file.
    if (!arguments.trace.isEmpty()) {
        for_option("--trace", [&] { m_rig->start_trace(arguments.trace); });
    }
}

void Session::set_up_rig()
{
    for_option("--fault", [this] { m_rig.emplace(m_profile, m_arguments.rig); });
    if (!m_arguments.replay.isEmpty()) {
        for_option("--replay", [this] { m_rig->start_replay(m_arguments.replay); });
    }
}

/// A file that is written must not be one of the others, whose content would be lost.
void Session::refuse_clashes() const
{
    using Use = NamedFile::Use;
    const std::optional<FileClash> clash = find_clash({
        {QStringLiteral("--table"), m_arguments.table, Use::Read},
        {QStringLiteral("--replay"), m_arguments.replay, Use::Read},
        {QStringLiteral("--memory"), m_arguments.memory_image, Use::Read},
        {QStringLiteral("--check"), m_arguments.check_image, Use::Read},
        {QStringLiteral("--save"), m_arguments.save_image, Use::Written},
        {QStringLiteral("--state"), m_arguments.state, Use::Written},
        {QStringLiteral("--trace"), m_arguments.trace, Use::Written},
        {QStringLiteral("--summary"), m_arguments.summary, Use::Written},
        {QStringLiteral("--link"), m_arguments.link, Use::Linked},
    });
    if (clash) {
        throw Error(
            QStringLiteral("%1 and %2 name the same file").arg(clash->option, clash->other_option));
    }
}

/// The image overwrites the state, as an uploader would.
void Session::prepare_memory()
{
    DeviceMemory& memory = m_rig->device().memory();
    if (!m_arguments.state.isEmpty()) {
        m_state.emplace(m_arguments.state, m_profile.attributes[Profile::bootloader_version]);
        m_state->load(memory);
    }
    if (m_arguments.memory_image.isEmpty()) {
        return;
    }
    const unsigned int left_out = MemoryImage(m_arguments.memory_image).fill(memory);
    if (left_out != 0) {
        complain(QStringLiteral("%1: %2 bytes lie outside of the device's memory and are left out")
                     .arg(m_arguments.memory_image, QString::number(left_out)));
    }
}

int Session::run()
{
    print(m_rig->device().port_path());
    if (m_command) {
        start_command();
    }
    serve();
    m_link.reset();
    // Saved first: the reader of the summary may be gone.
    const bool saved = save();
    const bool holds = sum_up();
    return exit_status(m_served && saved && holds);
}

int Session::exit_status(bool is_good) const
{
    if (m_command_end && !m_command_end->is_good()) {
        return ExitCommandFailed;
    }
    return is_good ? ExitGood : ExitFailed;
}

/// Whatever happens here, everything can still be saved afterwards.
void Session::serve()
{
    try {
        QCoreApplication::exec();
    } catch (const std::exception& failure) {
        complain(QString::fromUtf8(failure.what()));
        m_served = false;
    }
}

void Session::start_command()
{
    connect(m_command.get(), &CommandRunner::ended, this, &Session::end_command);
    // From within the event loop, which would not notice that it has to end before it has begun.
    QTimer::singleShot(0, m_command.get(), &CommandRunner::start);
}

void Session::stop()
{
    const bool is_running = m_command && !m_quiet.isActive();
    if (is_running) {
        m_command->stop();
    } else {
        QCoreApplication::quit();
    }
}

void Session::end_command(const CommandEnd& end, const QString& complaint)
{
    m_command_end = end;
    if (!complaint.isEmpty()) {
        complain(complaint);
    }
    m_since_command.start();
    m_quiet.start(quiet_ms);
}

/// Lets the device receive the last bytes of the command, such as a reset that it did not wait for.
void Session::leave_when_quiet()
{
    const qint64 heard = m_rig->device().bytes_from_host();
    const bool is_quiet = heard == m_heard_before && !m_rig->device().line().device_has_unread();
    if (!is_quiet && !m_since_command.hasExpired(longest_wait_ms)) {
        m_heard_before = heard;
        m_quiet.start(quiet_ms);
        return;
    }
    if (!is_quiet) {
        complain(QStringLiteral(
            "the command has ended with bytes still on the line; they are discarded"));
    }
    QCoreApplication::quit();
}

/// True if the memory passes the check and the summary has been written.
bool Session::sum_up()
{
    Summary summary = m_rig->summary();
    summary.command = m_command_end;
    if (m_expected) {
        summary.check = m_expected->compare(m_rig->device().memory());
    }
    const bool is_out = give_out(summary_text(summary, m_arguments.json));
    return is_out && holds_what_it_should(summary);
}

bool Session::holds_what_it_should(const Summary& summary) const
{
    return !summary.check || (summary.check->matches &&
                              (summary.check->outside_bytes == 0 || m_arguments.ignore_outside));
}

bool Session::give_out(const QString& text) const
{
    if (m_arguments.summary.isEmpty()) {
        print(text);
        return true;
    }
    return succeeds([&] { write_text(m_arguments.summary, text + QLatin1Char('\n')); });
}

/// Tries to save everything, even if some of it fails.
bool Session::save()
{
    const bool state = save_state();
    // An image may go to a pipe, which blocks until it has a reader.
    m_signals.reset();
    const bool image = save_image();
    if (!m_rig->is_trace_whole()) {
        complain(QStringLiteral("the trace %1 is incomplete: not all lines could be written")
                     .arg(m_arguments.trace));
    }
    return image && state && m_rig->is_trace_whole();
}

bool Session::save_state()
{
    return !m_state || succeeds([this] { m_state->save(m_rig->device().memory()); });
}

bool Session::save_image()
{
    const QString path = m_arguments.save_image;
    return path.isEmpty() || succeeds([&] { save_memory(m_rig->device().memory(), path); });
}

} // namespace sim
