#include "device/FrameCodec.h"
#include "device/Protocol.h"
#include "inspect/CommandWords.h"
#include "inspect/DeviceVersion.h"
#include "inspect/Figures.h"
#include "inspect/InputFile.h"
#include "inspect/LogAnalysis.h"
#include "inspect/LogFacts.h"
#include "inspect/Subcommand.h"
#include "inspect/UsageError.h"

#include <memory>

namespace inspect
{

namespace
{

/// Bytes of the payload that reports a version.
constexpr int version_answer = 4;

/// The device of a log, and the table that it comes from.
struct Device {
    TableFile table;
    const TableRow* row = nullptr;

    const Profile* profile() const { return row == nullptr ? nullptr : row->profile.get(); }

    std::optional<unsigned short> version() const
    {
        return row == nullptr ? std::nullopt
                              : std::optional(static_cast<unsigned short>(
                                    row->raw(Profile::bootloader_version)));
    }
};

/// The first version that a device reports in the log.
std::optional<unsigned short> version_in(QFile& log)
{
    LogReader reader(log);
    QByteArray payload;
    while (const auto line = reader.next()) {
        if (line->kind == LogLine::Kind::Received && !frame::decode(line->frame, payload) &&
            payload.startsWith(protocol::version_request()) && payload.size() == version_answer) {
            return protocol::version_in(payload.mid(protocol::version_request().size()));
        }
    }
    return std::nullopt;
}

/// The device that is named, or the one that reports its version, or the only one of the table.
/// Without --table and --device there is none, nor if a table has several and the log does not say
/// which.
std::unique_ptr<Device> device_of(const CommandWords& words, QFile& log)
{
    const auto path = words.value("table");
    const auto named = words.value("device");
    auto device = std::make_unique<Device>();
    if (!path && !named) {
        return device;
    }
    device->table = readable_table(path.value_or(QStringLiteral("device.txt")));
    if (named) {
        device->row = &row_for(device->table, *named);
        return device;
    }
    const auto version = version_in(log);
    log.seek(0);
    device->row = version ? device->table.find(*version) : nullptr;
    device->row = device->row == nullptr ? single_row(device->table) : device->row;
    return device;
}

LogSummary analysed(QFile& log, const Profile* profile, LogDiagnosis& diagnosis)
{
    LogReader reader(log);
    LogAnalysis analysis(profile, diagnosis);
    while (const auto line = reader.next()) {
        analysis.take(*line);
    }
    return analysis.finish();
}

Problem unreadable(const QString& path, const QString& reason)
{
    return {Code::LogUnreadable, reason, {path, 0, 0}, {}, {}};
}

QJsonValue json_of_device(const Device& device)
{
    return device.row == nullptr
               ? QJsonValue()
               : QJsonObject{{QStringLiteral("version"), device.row->version().toUpper()},
                             {QStringLiteral("name"), device.row->profile->name}};
}

QJsonObject facts_of(const QString& path, const LogSummary& summary, const Device& device)
{
    QJsonObject facts = json_of(summary, device.profile());
    facts.insert(QStringLiteral("file"), path);
    facts.insert(QStringLiteral("device"), json_of_device(device));
    return facts;
}

/// A log that cannot be looked into at all.
Report report_without_log(const QString& path, const QString& reason)
{
    Report report;
    report.problems = {unreadable(path, reason)};
    report.facts = [path] {
        return facts_of(path, LogSummary(), Device());
    };
    report.incomplete = true;
    return report;
}

/// What the user would get by naming a device of the table.
void print_missing_device(TextPage& page, const Device& device)
{
    if (device.row == nullptr && device.table.is_readable) {
        page.line();
        page.paragraph(
            QStringLiteral("%1 has several devices, and the log names none of them: --device adds "
                           "byte addresses, and the check of the length of every answer.")
                .arg(device.table.path),
            0);
    }
}

Report report_on(const QString& path, QFile& log, const std::shared_ptr<const Device>& device)
{
    LogDiagnosis diagnosis(device->profile(), device->version());
    const auto summary =
        std::make_shared<const LogSummary>(analysed(log, device->profile(), diagnosis));
    Report report;
    report.problems = diagnosis.problems(path, summary->counts);
    if (log.error() != QFile::NoError) {
        report.problems.insert(report.problems.begin(), unreadable(path, log.errorString()));
        report.incomplete = true;
    }
    if (summary->frame_count == 0) {
        report.problems.push_back(
            {Code::LogWithoutFrames,
             QStringLiteral("The file has %1.").arg(size_text(static_cast<quint64>(log.size()))),
             {path, 0, 0},
             {},
             {}});
    }
    report.facts = [path, summary, device] {
        return facts_of(path, *summary, *device);
    };
    report.print_text = [summary, device](TextPage& page) {
        print(page, *summary, device->profile());
        print_missing_device(page, *device);
    };
    return report;
}

Report run(const CommandWords& words)
{
    if (words.files().size() != 1) {
        throw UsageError(QStringLiteral("log takes one file"));
    }
    const QString path = words.files().first();
    InputFile input(path);
    if (!input.is_open()) {
        return report_without_log(path, input.reason());
    }
    return report_on(path, input.file(), device_of(words, input.file()));
}

} // namespace

const Subcommand& log_command()
{
    static const Subcommand subcommand = {
        "log",
        "Explain a frame log, and what was wrong on the line.",
        "Shows each frame of a log that zserial wrote with -x: its command, its answer and why\n"
        "that was refused; retries, runs, sums; and the likely cause of what went wrong.",
        "file",
        "The log.",
        {
            {"table", "table",
             "Take the device from <table> instead of ./device.txt: the one that reports its "
             "version in the log, or the only one."},
            {"device", "version",
             "The log is of the device of <version>, in hexadecimal. With a device, byte addresses "
             "are shown and the length of every answer is checked."},
        },
        run,
    };
    return subcommand;
}

} // namespace inspect
