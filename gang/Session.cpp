#include "gang/Session.h"

#include "gang/ArgumentError.h"
#include "gang/Commands.h"
#include "gang/EventJson.h"
#include "gang/EventLines.h"
#include "gang/LiveTable.h"
#include "gang/Terminal.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include <cstdio>

namespace gang
{

namespace
{

/// Returns the path of zserial: the one given with --zserial, or else the one next to this program,
/// or else the one on the PATH.
QString tool_for(const Arguments& arguments)
{
    if (!arguments.tool.isEmpty()) {
        const QString found = QStandardPaths::findExecutable(arguments.tool);
        if (found.isEmpty()) {
            throw ArgumentError(
                QStringLiteral("--zserial: there is no executable file %1").arg(arguments.tool));
        }
        return QFileInfo(found).absoluteFilePath();
    }
    const QString name = QStringLiteral("zserial");
    QString tool = QStandardPaths::findExecutable(name, {QCoreApplication::applicationDirPath()});
    if (tool.isEmpty()) {
        tool = QStandardPaths::findExecutable(name);
    }
    if (tool.isEmpty()) {
        throw ArgumentError(QStringLiteral(
            "there is no zserial beside this program or on the PATH; name it with --zserial"));
    }
    return tool;
}

std::unique_ptr<Display> display_for(const Arguments& arguments)
{
    if (arguments.json) {
        return std::make_unique<EventJson>();
    }
    if (has_terminal()) {
        return std::make_unique<LiveTable>();
    }
    return std::make_unique<EventLines>();
}

} // namespace

void print_error(const QString& text)
{
    (void)std::fprintf(stderr, "zserial-gang: %s\n", text.toLocal8Bit().constData());
}

Session::Session(const Arguments& arguments)
    : m_arguments(arguments),
      m_inputs(arguments, commands_of(arguments))
{
    const QString tool = tool_for(arguments);
    for (const QString& problem : m_inputs.problems()) {
        print_error(problem);
    }
    if (!m_inputs.problems().isEmpty() && !arguments.force) {
        throw ArgumentError(
            QStringLiteral("not started because of these problems; --force starts anyway"));
    }
    prepare_folders();
    prepare_numbers();
    m_assignment.emplace(Assignment{arguments, tool, m_inputs, m_numbers ? &*m_numbers : nullptr});
}

void Session::prepare_folders()
{
    if (!m_arguments.record.isEmpty()) {
        m_record.emplace(m_arguments.record);
    }
    if (!m_arguments.keep.isEmpty() &&
        !(QDir().mkpath(m_arguments.keep) && QFileInfo(m_arguments.keep).isWritable())) {
        throw ArgumentError(
            QStringLiteral("--keep: cannot write to the folder %1").arg(m_arguments.keep));
    }
}

void Session::prepare_numbers()
{
    if (!m_arguments.number_slot) {
        return;
    }
    m_numbers.emplace(m_arguments.number_file);
    const quint64 next = m_numbers->next();
    if (!bytes_of(next, *m_arguments.number_slot)) {
        throw ArgumentError(
            QStringLiteral("the serial number %1 does not fit into %2 bytes")
                .arg(QString::number(next), QString::number(m_arguments.number_slot->size)));
    }
}

int Session::run()
{
    // Nothing blocks from here on, so requests to stop can be handled by the event loop.
    m_signals.emplace();
    m_display = display_for(m_arguments);
    m_queue =
        std::make_unique<UploadQueue>(*m_assignment, m_record ? &*m_record : nullptr, *m_display);
    connect(&*m_signals, &Platform::SignalEvents::stop_requested, this,
            &Session::on_stop_requested);
    if (auto* table = dynamic_cast<LiveTable*>(m_display.get())) {
        connect(&*m_signals, &Platform::SignalEvents::terminal_resized, table, &LiveTable::resize);
    }
    connect(m_queue.get(), &UploadQueue::became_idle, this, &Session::end_if_idle);
    connect(m_queue.get(), &UploadQueue::failed, this,
            [this](const QString& reason) { m_troubles << reason; });
    for (const QString& port : m_arguments.ports) {
        m_queue->add(port);
    }
    if (!m_arguments.watch.isEmpty()) {
        m_watch = std::make_unique<PortWatch>(m_arguments.watch);
        connect(m_watch.get(), &PortWatch::appeared, m_queue.get(), &UploadQueue::add);
        connect(m_queue.get(), &UploadQueue::ended, m_watch.get(), &PortWatch::release);
        m_watch->start();
    }
    QCoreApplication::exec();
    m_display->summed_up(m_queue->states(), m_queue->tally());
    for (const QString& trouble : m_troubles) {
        print_error(trouble);
    }
    return status();
}

void Session::on_stop_requested()
{
    ++m_stops;
    if (m_stops == 1) {
        m_watch.reset();
        m_queue->wind_down();
    } else {
        m_queue->stop();
    }
}

/// Queued: a call of quit() before exec() would be lost.
void Session::end_if_idle()
{
    const bool waits_for_ports = m_watch && !m_queue->is_winding_down();
    if (!waits_for_ports) {
        QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
    }
}

/// A request to stop is the normal end of a watch; it counts as an interruption only if it killed
/// an upload.
int Session::status() const
{
    const Tally tally = m_queue->tally();
    const bool watching = !m_arguments.watch.isEmpty();
    const bool cut_short = tally.verdicts.contains(Verdict::Interrupted);
    if (m_stops > 0 && (!watching || cut_short)) {
        return ExitInterrupted;
    }
    const bool all_ok =
        tally.ok() == tally.runs() && tally.not_started == 0 && m_troubles.isEmpty();
    return all_ok ? ExitAllOk : ExitSomeNot;
}

} // namespace gang
