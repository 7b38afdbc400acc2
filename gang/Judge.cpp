#include "gang/Judge.h"

#include "gang/ConsoleScript.h"
#include "gang/ErrorText.h"

#include <QRegularExpression>

#include <array>
#include <csignal>
#include <cstdlib>
#include <vector>

namespace gang
{

namespace
{

constexpr int shown_lines = 3;

const char* const closing = "\nAll operations completed succesfully!\n";

/// What zserial prints for an operation, in this order.
struct Step {
    const char* name;      ///< its name in the message about a bad image; empty if it loads none
    const char* announced; ///< printed once the image is loaded
    bool flushed;          ///< true if `announced` is flushed at once
    const char* ended;     ///< printed when it has ended, even if it has failed
    const char* done;
    const char* failed;
    Verdict verdict;
    bool touches; ///< true if it changes device memory
};

/// `read_file_lost`: zserial could not reopen the file to save a read to, which it reports but
/// ignores.
std::vector<Step> steps_of(const Settings& settings, bool read_file_lost)
{
    const char* const read = read_file_lost ? "Could not open file to read data into!" : "";
    std::vector<Step> steps;
    if (settings.write_and_verify_wanted) {
        return {{"write-and-verify", "Uploading firmware\n", true, "\n", "Uploaded!\n",
                 "Write-and-verify failure!\n", Verdict::Write, true}};
    }
    if (settings.erase_all_wanted) {
        steps.push_back({"", "", false, "", "Erased all flash!\n",
                         "Erase all flash failed? Aborting...\n", Verdict::Erase, true});
    } else if (settings.erase_range_wanted) {
        steps.push_back({"", "", false, "", "Erased flash range!\n",
                         "Failed to erase flash range, aborting...\n", Verdict::Erase, true});
    }
    if (settings.write_wanted) {
        steps.push_back({"write", "Now writing", false, "", "Memory written!\n",
                         "Failed to write memory, aborting...\n", Verdict::Write, true});
    } else if (settings.write_range_wanted) {
        steps.push_back({"write", "Now writing", false, "", "Memory range written!\n",
                         "Failed to write memory range, aborting...\n", Verdict::Write, true});
    }
    if (settings.read_wanted) {
        steps.push_back({"", read, false, "", "Memory read!\n",
                         "Failed to read memory, aborting...\n", Verdict::Read, false});
    } else if (settings.read_range_wanted) {
        steps.push_back({"", read, false, "", "Memory range read!\n",
                         "Failed to read memory range, aborting...\n", Verdict::Read, false});
    }
    if (settings.verify_wanted) {
        steps.push_back({"verify", "Verifying firmware\n", true, "\n", "Verified!\n",
                         "Verification failure!\n", Verdict::Read, false});
    }
    return steps;
}

/// A device error that decides the verdict, whichever operation it occurs in.
struct Cause {
    const char* start;
    Verdict verdict;
};

constexpr std::array<Cause, 9> causes = {{
    {"cannot open port ", Verdict::Port},
    {"unusable geometry in device profile ", Verdict::Table},
    {"data mismatch starting at address 0x", Verdict::Mismatch},
    {"Row verify failure at address 0x", Verdict::Mismatch},
    {"unable to erase flash page at address 0x", Verdict::Erase},
    {"unable to write flash row at address 0x", Verdict::Write},
    {"unable to write EEPROM row at address 0x", Verdict::Write},
    {"unable to verify read flash row at address 0x", Verdict::Read},
    {"no profile for device ", Verdict::UnknownVersion},
}};

Verdict verdict_for(const QString& error, Verdict of_step)
{
    for (const Cause& cause : causes) {
        if (error.startsWith(QLatin1String(cause.start))) {
            return cause.verdict;
        }
    }
    return of_step;
}

QString plain(const char* text)
{
    return QString::fromLatin1(text).trimmed();
}

/// Matches a console against the output expected from zserial, from start to end.
class ConsoleReader
{
public:
    ConsoleReader(const QByteArray& console, const Settings& settings, bool read_file_lost)
        : m_console(console),
          m_settings(settings),
          m_steps(steps_of(settings, read_file_lost))
    {
    }

    Judgement read_success();
    Judgement read_failure();

private:
    bool settle_version();
    void note_version(const QString& message);
    bool find_version(const char* pattern);
    void begin(const Step& step);
    std::optional<Judgement> failure_before_version();
    std::optional<Judgement> failure_of(const Step& step);
    Judgement failed(Verdict verdict, const QString& message) const;

    const QByteArray& m_console;
    const Settings& m_settings;
    std::vector<Step> m_steps;
    ConsoleScript m_script;
    std::optional<unsigned short> m_version;
    bool m_touched = false;
};

Judgement ConsoleReader::failed(Verdict verdict, const QString& message) const
{
    return {verdict, message, m_version, m_touched};
}

/// Finds the line that reports the version, takes the version from it and adds the line to the
/// script. False if there is no such line.
bool ConsoleReader::find_version(const char* pattern)
{
    const QRegularExpression line(QString::fromLatin1(pattern));
    const QRegularExpressionMatch match = line.match(QString::fromLatin1(m_console));
    if (!match.hasMatch()) {
        return false;
    }
    m_script.say(match.captured().toLatin1());
    m_version = static_cast<unsigned short>(match.captured(1).toUInt(nullptr, 16));
    return true;
}

/// Takes the version from the message about a device that is not in the table.
void ConsoleReader::note_version(const QString& message)
{
    static const QRegularExpression found(QStringLiteral("^Found version 0x([0-9a-f]{4}) "));
    const QRegularExpressionMatch match = found.match(message);
    if (match.hasMatch()) {
        m_version = static_cast<unsigned short>(match.captured(1).toUInt(nullptr, 16));
    }
}

bool ConsoleReader::settle_version()
{
    if (m_settings.bootloader_version == 0) {
        return find_version(
            "Retrieved version number during QV entry procedure: 0x([0-9a-f]{4})\\n");
    }
    const bool found = find_version("Version set to 0x([0-9a-f]{4,8}) successfully!");
    m_script.flush();
    return found;
}

void ConsoleReader::begin(const Step& step)
{
    m_script.say(step.announced);
    if (step.flushed) {
        m_script.flush();
    }
    m_script.say(step.ended);
}

Judgement ConsoleReader::read_success()
{
    const bool version_settled = settle_version();
    for (const Step& step : m_steps) {
        m_touched = m_touched || step.touches;
        begin(step);
        m_script.say(step.done);
    }
    if (m_settings.reset_wanted) {
        m_script.say("Resetting device\n");
    }
    if (version_settled && m_script.text_before(m_console, closing)) {
        return failed(Verdict::Ok, {});
    }
    return failed(Verdict::Failed, {});
}

std::optional<Judgement> ConsoleReader::failure_before_version()
{
    struct Ending {
        const char* start;
        const char* end;
        Verdict verdict;
    };

    constexpr std::array<Ending, 7> endings = {{
        {"Could not open file ", " op, aborting...\n", Verdict::File},
        {"Could not open ", " for writing!\n", Verdict::File},
        {"Port ", " cannot be opened. Aborting...\n", Verdict::Port},
        {"Could not find device profile matching specified 0x", ", aborting...",
         Verdict::UnknownVersion},
        {"Found version 0x", " but could not load profile for this version. Aborting...",
         Verdict::UnknownVersion},
        {"Version request failed, aborting...\n", "", Verdict::UnknownVersion},
        {"Did not succeed in QV entry procedure, aborting...", "", Verdict::Silent},
    }};
    for (const Ending& ending : endings) {
        const auto before = m_script.text_before(m_console, ending.start, ending.end);
        if (before) {
            const QString error = deciding_error(*before);
            const Verdict verdict = verdict_for(error, ending.verdict);
            const QString text = last_lines(m_console.mid(before->size()), 1);
            note_version(text);
            return failed(verdict, verdict == Verdict::Port && !error.isEmpty() ? error : text);
        }
    }
    return std::nullopt;
}

std::optional<Judgement> ConsoleReader::failure_of(const Step& step)
{
    if (*step.name != '\0') {
        const QByteArray end =
            QByteArray(" as intel hex 32 format during ") + step.name + ", aborting...";
        const QByteArray start = "Could not process firmware file ";
        if (m_script.text_before(m_console, start, end)) {
            return failed(Verdict::File,
                          last_lines(m_console.mid(m_console.lastIndexOf(start)), 1));
        }
    }
    m_touched = m_touched || step.touches;
    begin(step);
    const auto before = m_script.text_before(m_console, step.failed);
    if (!before) {
        m_script.say(step.done);
        return std::nullopt;
    }
    const QString error = deciding_error(*before);
    if (!error.isEmpty()) {
        return failed(verdict_for(error, step.verdict), error);
    }
    if (step.verdict == Verdict::Read && *step.name != '\0') {
        return failed(Verdict::File, QStringLiteral("the image holds nothing for this device"));
    }
    return failed(step.verdict, plain(step.failed));
}

Judgement ConsoleReader::read_failure()
{
    if (auto failure = failure_before_version()) {
        return *failure;
    }
    if (settle_version()) {
        for (const Step& step : m_steps) {
            if (auto failure = failure_of(step)) {
                return *failure;
            }
        }
    }
    return failed(Verdict::Failed, {});
}

/// Returns the complaint about the table that zserial prints before it aborts; nothing if there is
/// none.
std::optional<QString> complaint_about_table(const QByteArray& err)
{
    static const QRegularExpression complaint(
        QStringLiteral("^\"?((?:file not found: |file read error: )\\./device\\.txt|"
                       "unparsable profile data|could not parse attr .*?)\"?\\s*$"),
        QRegularExpression::MultilineOption);
    const QRegularExpressionMatch match = complaint.match(QString::fromLocal8Bit(err));
    return match.hasMatch() ? std::optional<QString>(match.captured(1)) : std::nullopt;
}

Judgement judge_signal(const ToolResult& result)
{
    const QString signal = QStringLiteral("ended by signal %1").arg(result.code);
    if (result.code == SIGABRT) {
        if (const auto complaint = complaint_about_table(result.err)) {
            return {Verdict::Table, *complaint, {}, false};
        }
    }
    const bool asked = result.code == SIGINT || result.code == SIGTERM || result.code == SIGHUP;
    return {asked ? Verdict::Interrupted : Verdict::Crashed, signal, {}, true};
}

Judgement read_console(const ToolResult& result, const Settings& settings, bool read_file_lost)
{
    ConsoleReader reader(result.out, settings, read_file_lost);
    if (result.code == EXIT_SUCCESS) {
        return reader.read_success();
    }
    return result.code == EXIT_FAILURE ? reader.read_failure() : Judgement();
}

QString unexpected_end(const ToolResult& result)
{
    const QString status = QString::number(result.code);
    const QString lines = last_lines(result.out + '\n' + result.err, shown_lines);
    return lines.isEmpty()
               ? QStringLiteral("ended with status %1 and printed nothing").arg(status)
               : QStringLiteral("ended with status %1; its last lines: %2").arg(status, lines);
}

Judgement judge_exit(const ToolResult& result, const Settings& settings)
{
    Judgement judgement = read_console(result, settings, false);
    if (judgement.verdict != Verdict::Failed) {
        return judgement;
    }
    judgement = read_console(result, settings, true);
    if (judgement.verdict == Verdict::Ok) {
        judgement.verdict = Verdict::Unsaved;
        judgement.message =
            QStringLiteral("%1 could not be opened to save what was read").arg(settings.read_file);
    } else if (judgement.verdict == Verdict::Failed) {
        judgement.touched = true;
        judgement.message = unexpected_end(result);
    }
    return judgement;
}

} // namespace

Judgement judge(const ToolResult& result, const Settings& settings)
{
    switch (result.how) {
    case ToolResult::How::Exited:
        return judge_exit(result, settings);
    case ToolResult::How::Signalled:
        return judge_signal(result);
    case ToolResult::How::NotStarted:
        return {Verdict::Failed, result.reason, {}, false};
    case ToolResult::How::TimedOut:
        return {Verdict::TimedOut, result.reason, {}, true};
    case ToolResult::How::Stopped:
        return {Verdict::Interrupted, result.reason, {}, true};
    }
    return {};
}

} // namespace gang
