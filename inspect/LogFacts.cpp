#include "inspect/LogFacts.h"

#include "inspect/Figures.h"
#include "util/Util.h"

#include <QJsonArray>

namespace inspect
{

namespace
{

using Kind = SentCommand::Kind;

QString version_text(unsigned short version)
{
    return Util::uint_to_hex(uint{version}, 4);
}

QJsonValue whole(quint64 number)
{
    return static_cast<qint64>(number);
}

/// What of a command depends on its kind; null where it does not apply.
void add_command(QJsonObject& object, const SentCommand& command, const Profile* profile)
{
    const bool has_address = command.has_address();
    const auto byte = profile == nullptr ? std::nullopt : byte_address_of(command, *profile);
    object.insert(QStringLiteral("command"), name_of(command.kind));
    object.insert(QStringLiteral("memory"), !has_address ? QJsonValue()
                                            : command.memory == MEMORY_FLASH
                                                ? QJsonValue(QStringLiteral("flash"))
                                                : QJsonValue(QStringLiteral("eeprom")));
    object.insert(QStringLiteral("count"), has_address ? whole(command.count) : QJsonValue());
    object.insert(QStringLiteral("word_address"),
                  has_address ? whole(command.word_address) : QJsonValue());
    object.insert(QStringLiteral("byte_address"), byte ? whole(*byte) : QJsonValue());
}

QJsonObject json_of(const LoggedFrame& frame, const Profile* profile)
{
    QJsonObject object = {
        {QStringLiteral("line"), frame.line},
        {QStringLiteral("direction"),
         frame.is_sent ? QStringLiteral("sent") : QStringLiteral("received")},
        {QStringLiteral("run"), whole(frame.run)},
        {QStringLiteral("bytes"), frame.bytes},
        {QStringLiteral("data_bytes"), frame.is_sent ? frame.command.data_bytes : frame.data_bytes},
        {QStringLiteral("attempt"), frame.attempt},
        {QStringLiteral("answer"), name_of(frame.end)},
        {QStringLiteral("note"), frame.note.isEmpty() ? QJsonValue() : QJsonValue(frame.note)},
        {QStringLiteral("version"),
         frame.version ? QJsonValue(version_text(*frame.version)) : QJsonValue()},
    };
    add_command(object, frame.command, profile);
    return object;
}

QJsonObject commands_of(const LogCounts& counts)
{
    QJsonObject object;
    for (const Kind kind : command_kinds) {
        object.insert(name_of(kind), whole(counts.of(kind)));
    }
    return object;
}

void add_counts(QJsonObject& object, const LogCounts& counts)
{
    object.insert(QStringLiteral("commands"), commands_of(counts));
    object.insert(QStringLiteral("retries"), whole(counts.retries));
    object.insert(QStringLiteral("longest_streak"), whole(counts.longest_streak));
    object.insert(QStringLiteral("attempts"), whole(counts.awaited));
    object.insert(QStringLiteral("failed_attempts"), whole(counts.failed));
    object.insert(QStringLiteral("error_rate"), counts.error_rate());
    object.insert(QStringLiteral("bytes"),
                  QJsonObject{{QStringLiteral("to_device"), whole(counts.bytes_to_device)},
                              {QStringLiteral("from_device"), whole(counts.bytes_from_device)}});
}

QJsonObject json_of(const LoggedRun& run)
{
    QJsonObject object = {
        {QStringLiteral("first_line"), run.first_line},
        {QStringLiteral("last_line"), run.last_line},
        {QStringLiteral("begins"), name_of(run.begin)},
        {QStringLiteral("ends"), name_of(run.end)},
    };
    add_counts(object, run.counts);
    return object;
}

QString begin_text(RunBegin begin)
{
    switch (begin) {
    case RunBegin::Start:
        return QStringLiteral("the first in the log");
    case RunBegin::Reset:
        return QStringLiteral("after a reset");
    case RunBegin::Failure:
        return QStringLiteral("after a failure");
    case RunBegin::Break:
        return QStringLiteral("after a run that breaks off");
    case RunBegin::Version:
        return QStringLiteral("asks for the version");
    case RunBegin::Order:
        break;
    }
    return QStringLiteral("sends what the run before cannot have sent at this point");
}

QString end_text(RunEnd end)
{
    switch (end) {
    case RunEnd::Reset:
        return QStringLiteral("ends with a reset: its operations have succeeded");
    case RunEnd::Failure:
        return QStringLiteral("fails");
    case RunEnd::Break:
        return QStringLiteral("breaks off");
    case RunEnd::Open:
        break;
    }
    return QStringLiteral("ends with an accepted answer");
}

QString counts_text(const LogCounts& counts)
{
    QStringList parts;
    for (const Kind kind : command_kinds) {
        if (counts.of(kind) != 0) {
            parts << QStringLiteral("%1 %2").arg(counts.of(kind)).arg(name_of(kind));
        }
    }
    parts << QStringLiteral("%1 %2")
                 .arg(counts.retries)
                 .arg(QLatin1String(counts.retries == 1 ? "retry" : "retries"));
    return parts.join(QStringLiteral(", "));
}

QString answer_text(const LoggedFrame& frame)
{
    if (frame.end == AttemptEnd::Unclear) {
        return frame.note;
    }
    if (frame.end == AttemptEnd::Refused) {
        return QStringLiteral("refused: ") + frame.note;
    }
    if (frame.version) {
        return QStringLiteral("version ") + version_text(*frame.version);
    }
    return frame.command.kind == Kind::Read
               ? count_text(static_cast<quint64>(frame.data_bytes), "byte") +
                     QStringLiteral(" of data")
               : QStringLiteral("acknowledged");
}

QString command_text(const LoggedFrame& frame, const Profile* profile)
{
    return frame.attempt == 1 ? text_of(frame.command, profile)
                              : QStringLiteral("the same again, attempt %1").arg(frame.attempt);
}

void print_frame(TextPage& page, const LoggedFrame& frame, const Profile* profile)
{
    constexpr int label_width = 21;
    const QString label =
        QStringLiteral("%1 %2 %3")
            .arg(frame.line, 6)
            .arg(QLatin1String(frame.is_sent ? "TX" : "RX"),
                 count_text(static_cast<quint64>(frame.bytes), "byte").rightJustified(10));
    page.labelled(label, frame.is_sent ? command_text(frame, profile) : answer_text(frame), 0,
                  label_width);
    if (frame.is_sent && frame.end == AttemptEnd::NoAnswer) {
        page.labelled(QString(), QStringLiteral("no answer"), 0, label_width);
    }
}

void print_frames(TextPage& page, const LogSummary& log, const Profile* profile)
{
    quint64 run = 0;
    for (const LoggedFrame& frame : log.frames) {
        if (frame.run != run) {
            if (run != 0) {
                page.line();
            }
            run = frame.run;
            page.heading(QStringLiteral("Run %1").arg(run));
        }
        print_frame(page, frame, profile);
    }
    if (log.frames.size() < log.frame_count) {
        page.paragraph(QStringLiteral("The first %1 are listed; all count.")
                           .arg(count_text(log.frames.size(), "frame")),
                       0);
    }
}

void print_runs(TextPage& page, const LogSummary& log)
{
    page.line();
    page.heading(QStringLiteral("Runs"));
    for (const LoggedRun& run : log.runs) {
        page.labelled(QString::number(run.number),
                      QStringLiteral("lines %1 to %2, %3: %4; %5.")
                          .arg(run.first_line)
                          .arg(run.last_line)
                          .arg(begin_text(run.begin), counts_text(run.counts), end_text(run.end)),
                      2, 6);
    }
    if (log.runs.size() < log.run_count) {
        page.paragraph(QStringLiteral("The first %1 are listed; all count.")
                           .arg(count_text(log.runs.size(), "run")),
                       2);
    }
}

void print_sums(TextPage& page, const LogCounts& counts)
{
    constexpr int width = 12;
    page.line();
    page.heading(QStringLiteral("Sums"));
    page.labelled(QStringLiteral("commands"), counts_text(counts), 2, width);
    page.labelled(QStringLiteral("attempts"),
                  QStringLiteral("%1 awaited an answer, %2 failed (%3 %)")
                      .arg(counts.awaited)
                      .arg(counts.failed)
                      .arg(100 * counts.error_rate(), 0, 'f', 1),
                  2, width);
    page.labelled(QStringLiteral("streak"),
                  QStringLiteral("at most %1 for one command")
                      .arg(counts.longest_streak == 1
                               ? QStringLiteral("1 retry")
                               : QStringLiteral("%1 retries").arg(counts.longest_streak)),
                  2, width);
    page.labelled(QStringLiteral("bytes"),
                  QStringLiteral("%1 to the device, %2 from it")
                      .arg(counts.bytes_to_device)
                      .arg(counts.bytes_from_device),
                  2, width);
}

} // namespace

QJsonObject json_of(const LogSummary& log, const Profile* profile)
{
    QJsonArray frames;
    for (const LoggedFrame& frame : log.frames) {
        frames.append(json_of(frame, profile));
    }
    QJsonArray runs;
    for (const LoggedRun& run : log.runs) {
        runs.append(json_of(run));
    }
    QJsonObject object = {
        {QStringLiteral("frames"), frames},
        {QStringLiteral("frame_count"), whole(log.frame_count)},
        {QStringLiteral("runs"), runs},
        {QStringLiteral("run_count"), whole(log.run_count)},
    };
    add_counts(object, log.counts);
    return object;
}

void print(TextPage& page, const LogSummary& log, const Profile* profile)
{
    if (log.frame_count == 0) {
        return;
    }
    print_frames(page, log, profile);
    print_runs(page, log);
    print_sums(page, log.counts);
    page.line();
    page.paragraph(
        QStringLiteral("A log shows neither times nor the probes of the entry procedure, neither "
                       "the echo that -h takes away nor what never became a whole frame, and not "
                       "whether a comparison succeeded."),
        0);
}

} // namespace inspect
