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
    for (int i = 0; i < arguments.size(); ++i) {
        const Option* option = find_option(arguments.at(i));
        if (option == nullptr) {
            continue;
        }
        Scan scan{arguments.mid(i + 1, option->arguments), can_open, settings};
        if (auto failure = option->handle(scan)) {
            return failure;
        }
        i += option->arguments;
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

} // namespace command_line
