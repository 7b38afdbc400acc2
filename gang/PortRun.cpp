#include "gang/PortRun.h"

#include <utility>

namespace gang
{

namespace
{

/// Returns how many phases of an upload report progress.
int phases_of(const Settings& settings, bool certified)
{
    const bool writes =
        settings.write_and_verify_wanted || settings.write_wanted || settings.write_range_wanted;
    const bool verifies = settings.verify_wanted && !settings.write_and_verify_wanted;
    return (writes ? 1 : 0) + (verifies ? 1 : 0) + (certified ? 1 : 0);
}

} // namespace

PortRun::PortRun(const Assignment& assignment, const PortNames& port)
    : m_assignment(assignment),
      m_command(assignment.arguments.tool_arguments, port)
{
    m_state.port = port;
    m_pause.setSingleShot(true);
    connect(&m_pause, &QTimer::timeout, this, &PortRun::begin_try);
}

void PortRun::start()
{
    const Arguments& arguments = m_assignment.arguments;
    m_state.since.start();
    m_record.time = QDateTime::currentDateTimeUtc();
    m_record.station = arguments.station;
    m_record.port = m_state.port.path;
    const Adapter adapter = adapter_on(m_state.port.path);
    m_record.adapter_name = adapter.name;
    m_record.adapter_serial = adapter.serial;
    m_record.arguments = arguments.tool_arguments;
    m_record.image_sha256 = m_assignment.inputs.image_sha256(m_command.written_image().isEmpty()
                                                                 ? m_command.images().value(0)
                                                                 : m_command.written_image());
    m_record.table_sha256 = m_assignment.inputs.table_sha256();
    begin_try();
}

void PortRun::stop_retrying()
{
    m_last_try = true;
    if (m_pause.isActive()) {
        m_pause.stop();
        finish(m_judgement);
    }
}

void PortRun::stop()
{
    stop_retrying();
    if (m_process) {
        m_process->stop();
    }
}

/// Draws a serial number unless the run has one that no device can have received. A number that may
/// have reached a device is not used for another try, because the port may have a different device
/// by then.
bool PortRun::take_number()
{
    if (m_assignment.numbers == nullptr || (m_record.number && !m_number_may_be_in_device)) {
        return true;
    }
    if (m_record.number) {
        m_record.void_numbers.append(*std::exchange(m_record.number, std::nullopt));
    }
    const NumberSlot& slot = *m_assignment.arguments.number_slot;
    const QString to = QStringLiteral("%1 %2 %3")
                           .arg(QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs),
                                m_assignment.arguments.station, m_state.port.path);
    try {
        m_record.number = m_assignment.numbers->draw(to, [&slot](quint64 number) {
            if (!bytes_of(number, slot)) {
                throw FileError(QStringLiteral("the serial number %1 does not fit into %2 bytes")
                                    .arg(QString::number(number), QString::number(slot.size)));
            }
        });
    } catch (const FileError& error) {
        finish_without_number(QString::fromStdString(error.what()));
        return false;
    }
    m_number_may_be_in_device = false;
    return true;
}

void PortRun::finish_without_number(const QString& reason)
{
    --m_record.tries;
    Q_EMIT number_missing(reason);
    if (m_record.tries > 0) {
        finish(m_judgement);
    } else {
        Q_EMIT not_started(reason);
    }
}

void PortRun::begin_try()
{
    ++m_record.tries;
    m_state.attempt = m_record.tries;
    if (!take_number()) {
        return;
    }
    try {
        const Arguments& arguments = m_assignment.arguments;
        if (!arguments.keep.isEmpty() && m_run_folder.folder().isEmpty()) {
            m_run_folder = RunFolder(arguments.keep, m_state.port.name, m_record.time);
        }
        m_copies = m_assignment.inputs.prepare_folder(m_assignment.inputs.folder_of(m_state.port),
                                                      m_command, m_record.number);
    } catch (const FileError& error) {
        end_try({Verdict::File, QString::fromStdString(error.what()), {}, false});
        return;
    }
    begin_upload();
}

void PortRun::begin_upload()
{
    m_read = ReadFileCheck(m_command.read_file());
    QStringList words = m_assignment.arguments.certify ? m_command.words_without_reset(m_copies)
                                                       : m_command.words(m_copies);
    launch(Step::Upload, words);
}

void PortRun::begin_certification()
{
    launch(Step::Certification, m_command.words_to_certify(m_copies));
}

/// The frame log arguments come first: at the end, an option that lacks its value would take "-x"
/// for it.
void PortRun::launch(Step step, const QStringList& words)
{
    m_step = step;
    m_words =
        (m_command.has_frame_log() ? QStringList() : m_run_folder.frame_log_arguments()) + words;
    m_settings = settings_from(m_words);
    m_state.phase = step == Step::Upload ? RunState::Phase::Running : RunState::Phase::Certifying;
    m_state.percentage = -1;
    m_process = std::make_unique<ToolProcess>();
    connect(m_process.get(), &ToolProcess::printed, this, &PortRun::show_progress);
    connect(m_process.get(), &ToolProcess::ended, this, &PortRun::on_process_ended);
    Q_EMIT changed();
    m_process->start(m_assignment.tool, m_words, m_assignment.inputs.folder_of(m_state.port),
                     m_assignment.arguments.limit_ms);
}

void PortRun::show_progress()
{
    const int percentage = m_process->out().percentage();
    if (percentage < 0) {
        return;
    }
    int phase = 0;
    if (m_step == Step::Certification) {
        phase = phases_of(m_command.settings(), true) - 1;
    } else if (m_process->out().text().contains("Verifying firmware\n")) {
        m_state.phase = RunState::Phase::Verifying;
        phase = phases_of(m_command.settings(), false) - 1;
    } else {
        m_state.phase = RunState::Phase::Writing;
    }
    m_state.percentage = percentage;
    m_state.done = (phase + percentage / 100.0) /
                   qMax(1, phases_of(m_command.settings(), m_assignment.arguments.certify));
    Q_EMIT changed();
}

void PortRun::on_process_ended(const ToolResult& result)
{
    m_process.release()->deleteLater(); // it is still emitting this signal
    m_run_folder.add_console(m_words, result);
    Judgement judgement = judge(result, m_settings);
    judgement.message = readable(judgement.message);
    if (m_step == Step::Upload) {
        judge_upload(judgement);
    } else {
        judge_certification(judgement);
    }
}

/// Replaces the names of copies with those of the user's images.
QString PortRun::readable(QString message) const
{
    for (auto copy = m_copies.begin(); copy != m_copies.end(); ++copy) {
        message.replace(copy.value(), copy.key());
    }
    return message;
}

void PortRun::judge_upload(Judgement judgement)
{
    m_number_may_be_in_device = m_number_may_be_in_device || judgement.touched;
    if (judgement.verdict != Verdict::Ok) {
        end_try(judgement);
        return;
    }
    QString problem = m_read.problem();
    judgement.verdict = problem.isEmpty() ? Verdict::Ok : Verdict::Unsaved;
    if (problem.isEmpty() && judgement.version) {
        problem = m_assignment.inputs.fit_problem(*judgement.version, m_command);
        judgement.verdict = problem.isEmpty() ? Verdict::Ok : Verdict::File;
    }
    judgement.message = problem;
    m_judgement = judgement;
    if (judgement.verdict == Verdict::Ok && m_assignment.arguments.certify) {
        begin_certification();
    } else {
        end_try(judgement);
    }
}

void PortRun::judge_certification(Judgement judgement)
{
    const std::optional<unsigned short> written_as = m_judgement.version;
    if (judgement.verdict != Verdict::Ok) {
        judgement.message = QStringLiteral("certification: ") + judgement.message;
    } else if (judgement.version != written_as) {
        judgement.verdict = Verdict::UnknownVersion;
        judgement.message =
            QStringLiteral("certification: the device was written as version %1 and reports %2")
                .arg(version_text(*written_as), version_text(*judgement.version));
    }
    if (!judgement.version) {
        judgement.version = written_as;
    }
    end_try(judgement);
}

bool PortRun::may_try_again(Verdict verdict) const
{
    return !m_last_try && m_record.tries < m_assignment.arguments.tries &&
           verdict != Verdict::Interrupted && verdict != Verdict::Table && verdict != Verdict::File;
}

void PortRun::end_try(const Judgement& judgement)
{
    m_judgement = judgement;
    m_record.version = judgement.version;
    if (judgement.verdict != Verdict::Ok && may_try_again(judgement.verdict)) {
        pause(judgement);
    } else {
        finish(judgement);
    }
}

void PortRun::pause(const Judgement& judgement)
{
    m_state.phase = RunState::Phase::Pausing;
    m_state.percentage = -1;
    m_state.done = 0;
    m_state.message = judgement.message;
    m_state.verdict = judgement.verdict;
    m_pause.start(m_assignment.arguments.pause_ms);
    Q_EMIT failed_try(judgement);
    Q_EMIT changed();
}

void PortRun::finish(const Judgement& judgement)
{
    if (m_assignment.arguments.keep_failures_only && judgement.verdict == Verdict::Ok) {
        m_run_folder.discard();
    }
    m_record.seconds = static_cast<double>(m_state.since.elapsed()) / 1000.0;
    m_record.verdict = judgement.verdict;
    m_record.message = judgement.message;
    m_record.log = m_run_folder.folder();
    Q_EMIT finished(m_record);
}

} // namespace gang
