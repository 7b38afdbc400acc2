#include "sim/Session.h"

#include "sim/Console.h"

#include <QCoreApplication>
#include <QJsonDocument>

#include <exception>

namespace sim
{

namespace
{

/// What a command wrote to its port just before it ended takes a moment to get here.
constexpr int quiet_ms = 20;

QString summary_text(const Summary& summary, bool json)
{
    if (json) {
        return QString::fromUtf8(QJsonDocument(json_of(summary)).toJson(QJsonDocument::Compact));
    }
    return text_of(summary).join(QLatin1Char('\n'));
}

} // namespace

Session::Session(const Arguments& arguments)
    : m_arguments(arguments),
      m_table(arguments.table),
      m_profile(m_table.choose(arguments.version)),
      m_rig(m_profile, arguments.rig)
{
    prepare_memory();
    // Loaded before serving, so that a mistyped name shows at once.
    if (!arguments.check_image.isEmpty()) {
        m_expected.emplace(arguments.check_image);
    }
    const QString port_path = m_rig.device().port_path();
    if (!arguments.link.isEmpty()) {
        m_link = std::make_unique<PortLink>(arguments.link, port_path);
    }
    if (!arguments.command.isEmpty()) {
        m_command = std::make_unique<CommandRunner>(arguments.command, port_path);
    }
    m_quiet.setSingleShot(true);
    connect(&m_quiet, &QTimer::timeout, this, &Session::leave_when_quiet);
    connect(&m_signals, &StopSignals::stop_requested, this, &Session::stop);
}

/// The image goes over the state, as an uploader's work would.
void Session::prepare_memory()
{
    DeviceMemory& memory = m_rig.device().memory();
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
    print(m_rig.device().port_path());
    if (m_command) {
        start_command();
    }
    QCoreApplication::exec();
    m_link.reset();
    // Saved first: who was to read the summary may be gone, and its pipe end the program.
    const bool saved = save();
    const bool holds = check_and_sum_up();
    return m_status == ExitGood && !(holds && saved) ? ExitFailed : m_status;
}

void Session::start_command()
{
    connect(m_command.get(), &CommandRunner::ended, this, &Session::end_command);
    connect(m_command.get(), &CommandRunner::not_started, this, [this](const QString& reason) {
        complain(reason);
        end_command(ExitFailed);
    });
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

void Session::end_command(int status)
{
    m_status = status;
    m_quiet.start(quiet_ms);
}

/// The device gets the last word that a command sent, such as a reset that it did not wait for.
void Session::leave_when_quiet()
{
    const int heard = m_rig.device().heard().size();
    if (heard == m_heard_before && !m_rig.device().line().device_has_unread()) {
        QCoreApplication::quit();
        return;
    }
    m_heard_before = heard;
    m_quiet.start(quiet_ms);
}

/// True unless the memory differs from what was expected.
bool Session::check_and_sum_up()
{
    Summary summary = m_rig.summary();
    if (m_expected) {
        summary.check = m_expected->compare(m_rig.device().memory());
    }
    print(summary_text(summary, m_arguments.json));
    return !summary.check || summary.check->matches;
}

/// Tries everything that is to be saved, whatever becomes of the rest.
bool Session::save()
{
    const auto succeeds = [](const auto& write) {
        try {
            write();
            return true;
        } catch (const ImageError& failure) {
            complain(QString::fromUtf8(failure.what()));
            return false;
        }
    };
    const DeviceMemory& memory = m_rig.device().memory();
    const bool image = m_arguments.save_image.isEmpty() ||
                       succeeds([&] { save_memory(memory, m_arguments.save_image); });
    const bool state = !m_state || succeeds([&] { m_state->save(memory); });
    if (!m_rig.is_trace_whole()) {
        complain(QStringLiteral("cannot write the trace %1").arg(m_arguments.rig.trace));
    }
    return image && state && m_rig.is_trace_whole();
}

} // namespace sim
