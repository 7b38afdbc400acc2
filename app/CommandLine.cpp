#include "app/CommandLine.h"

#include <QFile>

namespace command_line
{

namespace
{

bool anything_wanted(const Settings& settings)
{
    return settings.read_wanted || settings.read_range_wanted || settings.write_range_wanted ||
           settings.write_wanted || settings.reset_wanted || settings.erase_all_wanted ||
           settings.erase_range_wanted || settings.version_request_wanted ||
           settings.entry_procedure_wanted;
}

} // namespace

bool can_open_for_reading_and_writing(const QString& name)
{
    QFile file(name);
    return file.open(QIODevice::ReadWrite);
}

std::optional<Failure> scan(const QStringList& arguments, FileCheck can_open, Settings& settings)
{
    for (const GivenWord& word : split(arguments)) {
        Scan scan{word.following, can_open, settings};
        if (word.option == nullptr) {
            continue;
        }
        if (auto failure = word.option->handle(scan)) {
            return failure;
        }
    }
    return std::nullopt;
}

std::optional<Failure> check_conflicts(const Settings& settings)
{
    if (settings.read_wanted && settings.read_range_wanted) {
        return Failure{QStringLiteral("Please specify only one of read (-r) or limited read (-l) "
                                      "operations. Aborting...\n")};
    }
    if (settings.write_range_wanted && settings.write_wanted) {
        return Failure{QStringLiteral("Please specify only one of write (-w) or limited write (-W) "
                                      "or write-and-verify (-wv) operations. Aborting...\n")};
    }
    if (settings.erase_all_wanted && settings.erase_range_wanted) {
        return Failure{QStringLiteral("Please specify only one of erase all (-e) or limited erase "
                                      "(-E) operations. Aborting...\n")};
    }
    return std::nullopt;
}

std::optional<Failure> check_request(const Settings& settings)
{
    if (!settings.entry_procedure_wanted && !settings.version_request_wanted &&
        settings.bootloader_version == 0) {
        return Failure{
            QStringLiteral("No version or version request method can be discerned, please specify "
                           "-b or -V or -B options. Aborting..."),
            true};
    }
    if (settings.version_request_wanted && settings.entry_procedure_wanted) {
        return Failure{
            QStringLiteral("Please use QV entry procedure (-b) OR version request (-V) but not "
                           "both. Aborting..."),
            true};
    }
    if (!anything_wanted(settings)) {
        return Failure{
            QStringLiteral("No actionable operation specified, please choose a "
                           "read/write/verify/erase/version/reset command. Aborting...\n\n"),
            true};
    }
    return std::nullopt;
}

std::optional<Failure> take(const QStringList& arguments, const FileAccess& files,
                            Settings& settings)
{
    if (arguments.isEmpty()) {
        return Failure{QStringLiteral("Please specify an argument"), true};
    }
    if (auto failure = scan(arguments, files.can_open, settings)) {
        return failure;
    }
    if (auto failure = check_conflicts(settings)) {
        return failure;
    }
    if (!settings.log_file.isEmpty() && !files.open_frame_log(settings.log_file)) {
        return Failure{QStringLiteral("Could not open ") + settings.log_file +
                       QStringLiteral(" for writing!\n")};
    }
    return check_request(settings);
}

} // namespace command_line
