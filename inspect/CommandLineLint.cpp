#include "inspect/CommandLineLint.h"

#include "app/OperationDispatch.h"
#include "inspect/FileOutlook.h"
#include "inspect/OptionMeanings.h"
#include "profile/Profile.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <iterator>

namespace inspect
{

namespace
{

using command_line::GivenWord;

Problem problem(Code code, const QString& message)
{
    return {code, message, {}, {}, {}};
}

QString hex4(unsigned int value)
{
    return QStringLiteral("0x%1").arg(value, 4, 16, QLatin1Char('0'));
}

// ---- words ----------------------------------------------------------------------------------

void lint_version(const QString& text, std::vector<Problem>& problems)
{
    static const QRegularExpression decimal(QStringLiteral("^[1-9][0-9]+$"));
    bool ok = false;
    const unsigned int version = text.toUInt(&ok, 16);
    if (!ok) {
        return;
    }
    if (version == 0) {
        problems.push_back(
            problem(Code::VersionZero, QStringLiteral("-B %1 names no version.").arg(text)));
    } else if (version > 0xFFFF) {
        problems.push_back(problem(
            Code::VersionCut, QStringLiteral("%1 becomes %2.").arg(text, hex4(version & 0xFFFFU))));
    } else if (decimal.match(text).hasMatch()) {
        problems.push_back(problem(
            Code::VersionInHex,
            QStringLiteral("-B %1 is %2, %3 in decimal.").arg(text, hex4(version)).arg(version)));
    }
}

void lint_numbers(const GivenWord& word, std::vector<Problem>& problems)
{
    static const QRegularExpression octal(QStringLiteral("^0[0-7]+$"));
    static const QStringList options = {QStringLiteral("-W"), QStringLiteral("-l"),
                                        QStringLiteral("-E"), QStringLiteral("-M")};
    if (!options.contains(word.text)) {
        return;
    }
    for (const QString& text : word.following.mid(0, 2)) {
        if (octal.match(text).hasMatch() && number_in(text) != text.toUInt(nullptr, 10)) {
            problems.push_back(problem(
                Code::OctalNumber,
                QStringLiteral("%1 after %2 is %3.").arg(text, word.text).arg(number_in(text))));
        }
    }
}

void lint_arguments(const GivenWord& word, std::vector<Problem>& problems)
{
    for (const QString& argument : word.following) {
        if (command_line::find_option(argument) != nullptr) {
            problems.push_back(
                problem(Code::OptionAsArgument,
                        QStringLiteral("%1 takes %2 as its own.").arg(word.text, argument)));
        }
    }
}

void lint_option(const GivenWord& word, std::vector<Problem>& problems)
{
    lint_arguments(word, problems);
    lint_numbers(word, problems);
    if (word.text == QLatin1String("-B")) {
        lint_version(word.following.value(0), problems);
    }
    if (word.text == QLatin1String("-M") && !word.following.isEmpty()) {
        problems.push_back(problem(
            Code::RateIdle, QStringLiteral("-M %1 changes nothing.").arg(word.following.value(0))));
    }
    if (word.text == QLatin1String("-x") && word.following.value(0).isEmpty()) {
        problems.push_back(
            problem(Code::LogWithoutName, QStringLiteral("No file name follows -x.")));
    }
}

QString table_purpose()
{
    return QStringLiteral("the table");
}

// ---- settings -------------------------------------------------------------------------------

bool writes(const Settings& settings)
{
    return settings.write_wanted || settings.write_range_wanted;
}

bool is_carried_out(const Settings& settings, Operation operation)
{
    const std::vector<Operation> operations = operations_of(settings);
    return std::find(operations.begin(), operations.end(), operation) != operations.end();
}

QString first_of(bool first, const char* one, const char* other)
{
    return QLatin1String(first ? one : other);
}

/// What "-wv" leaves out.
QStringList left_out(const Settings& settings)
{
    QStringList options;
    const auto add = [&options](bool wanted, const char* option) {
        if (wanted) {
            options << QLatin1String(option);
        }
    };
    add(settings.erase_range_wanted, "-E");
    add(settings.write_wanted, "-w");
    add(settings.write_range_wanted, "-W");
    add(settings.read_wanted, "-r");
    add(settings.read_range_wanted, "-l");
    add(settings.verify_wanted, "-v");
    return settings.write_and_verify_wanted ? options : QStringList();
}

void lint_version_request(const Settings& settings, std::vector<Problem>& problems)
{
    if (!settings.version_request_wanted) {
        return;
    }
    problems.push_back(
        settings.bootloader_version == 0
            ? problem(Code::VersionRequestFails,
                      QStringLiteral("No profile is selected when -V asks for its "
                                     "version."))
            : problem(Code::VersionRequestIdle, QStringLiteral("-B names the version already.")));
}

/// Without a profile, any range may have flash in it.
bool has_flash(const TypedRange& range, const Profile* profile)
{
    return profile == nullptr || (profile->has_memory_type(MEMORY_FLASH) &&
                                  range.lower < profile->get_max_address(MEMORY_FLASH) &&
                                  range.upper > profile->get_min_address(MEMORY_FLASH));
}

void lint_erase(const Settings& settings, const Profile* profile, std::vector<Problem>& problems)
{
    if (settings.erase_range_wanted && is_carried_out(settings, Operation::Erase)) {
        problems.push_back(problem(
            Code::EraseRangeUnused,
            QStringLiteral("It erases addresses %1 to %2, %3 encrypted and %4 unencrypted flash.")
                .arg(settings.include_encrypted ? 1 : 0)
                .arg(settings.include_unencrypted ? 1 : 0)
                .arg(first_of(settings.erase_range.lower != 0, "with", "without"),
                     first_of(settings.erase_range.upper != 0, "with", "without"))));
    }
    if (settings.write_range_wanted && !settings.erase_all_wanted &&
        is_carried_out(settings, Operation::Write) && has_flash(settings.write_range, profile)) {
        problems.push_back(problem(
            Code::RangeNotErased,
            QStringLiteral("Nothing is erased before %1 is written.").arg(settings.write_file)));
    }
}

/// Where the two are the same, it does not matter which of them is meant.
void lint_ranges(const Settings& settings, const Profile& profile, std::vector<Problem>& problems)
{
    const bool write = settings.write_range_wanted && is_carried_out(settings, Operation::Write);
    const bool read = settings.read_range_wanted && is_carried_out(settings, Operation::Read);
    for (const MemoryType memory : {MEMORY_FLASH, MEMORY_EEPROM}) {
        const unsigned int divisor = profile.get_address_divisor(memory);
        if ((write || read) && profile.has_memory_type(memory) && divisor > 1) {
            problems.push_back(
                problem(Code::ByteAddresses,
                        QStringLiteral("A word address of this device's %1 stands for %2 bytes.")
                            .arg(first_of(memory == MEMORY_FLASH, "flash", "EEPROM"))
                            .arg(divisor)));
            return;
        }
    }
}

void lint_operations(const Settings& settings, std::vector<Problem>& problems)
{
    const QStringList options = left_out(settings);
    if (!options.isEmpty()) {
        problems.push_back(problem(
            Code::OperationLeftOut,
            QStringLiteral("Not carried out: %1.").arg(options.join(QStringLiteral(", ")))));
    }
    if (writes(settings) && is_carried_out(settings, Operation::Verify) &&
        settings.write_file != settings.verify_file &&
        !are_one_file(settings.write_file, settings.verify_file)) {
        problems.push_back(
            problem(Code::DifferentImages, QStringLiteral("%1 is written and %2 is verified.")
                                               .arg(settings.write_file, settings.verify_file)));
    }
}

void lint_files(const std::vector<FileUse>& files, std::vector<Problem>& problems)
{
    for (auto one = files.begin(); one != files.end(); ++one) {
        for (auto other = one + 1; other != files.end(); ++other) {
            if ((one->is_written || other->is_written) && are_one_file(one->name, other->name)) {
                problems.push_back(problem(Code::OneFileTwice,
                                           QStringLiteral("%1 is the file of %2 and of %3.")
                                               .arg(other->name, one->purpose, other->purpose)));
            }
        }
    }
}

/// What has been read back by then is verified.
bool is_read_before(const FileUse& image, const std::vector<FileUse>& files)
{
    return image.purpose == QLatin1String("-v") &&
           std::any_of(files.begin(), files.end(), [&image](const FileUse& file) {
               return file.is_written && file.purpose != QLatin1String("-x") &&
                      are_one_file(file.name, image.name);
           });
}

void lint_images(const std::vector<FileUse>& images, std::vector<Problem>& problems)
{
    for (const FileUse& file : images) {
        const QFileInfo info(file.name);
        if (!info.exists()) {
            problems.push_back(
                problem(Code::ImageMissing, QStringLiteral("There is no %1.").arg(file.name)));
            problems.back().place.file = file.name;
        } else if (!info.isFile()) {
            problems.push_back(problem(
                Code::ImageUnforeseen,
                QStringLiteral("%1 after %2 is not a regular file.").arg(file.name, file.purpose)));
            problems.back().place.file = file.name;
        }
    }
}

} // namespace

std::vector<Problem> lint_words(const QStringList& arguments)
{
    std::vector<Problem> problems;
    for (const GivenWord& word : command_line::split(arguments)) {
        if (word.option != nullptr) {
            lint_option(word, problems);
        } else {
            problems.push_back(
                problem(Code::IgnoredWord, QStringLiteral("\"%1\" is ignored.").arg(word.text)));
        }
    }
    return problems;
}

std::vector<FileUse> files_used(const Settings& settings, const QString& table)
{
    std::vector<FileUse> files = {{table_purpose(), table, false}};
    for (const Operation operation : operations_of(settings)) {
        switch (operation) {
        case Operation::WriteAndVerify:
            files.push_back({QStringLiteral("-wv"), settings.write_and_verify_file, false});
            break;
        case Operation::Write:
            files.push_back(
                {first_of(settings.write_wanted, "-w", "-W"), settings.write_file, false});
            break;
        case Operation::Read:
            files.push_back({first_of(settings.read_wanted, "-r", "-l"), settings.read_file, true});
            break;
        case Operation::Verify:
            files.push_back({QStringLiteral("-v"), settings.verify_file, false});
            break;
        case Operation::Erase:
            break;
        }
    }
    if (!settings.log_file.isEmpty()) {
        files.push_back({QStringLiteral("-x"), settings.log_file, true});
    }
    return files;
}

std::vector<FileUse> images_used(const Settings& settings)
{
    const std::vector<FileUse> files = files_used(settings, {});
    std::vector<FileUse> images;
    std::copy_if(files.begin(), files.end(), std::back_inserter(images), [&](const FileUse& file) {
        return !file.is_written && file.purpose != table_purpose() && !is_read_before(file, files);
    });
    return images;
}

std::vector<Problem> lint_settings(const Settings& settings, const Profile* profile,
                                   const QString& table)
{
    std::vector<Problem> problems;
    lint_version_request(settings, problems);
    if (settings.port_name.isEmpty()) {
        problems.push_back(problem(Code::PortMissing, QStringLiteral("-s is missing.")));
    }
    lint_erase(settings, profile, problems);
    if (profile != nullptr) {
        lint_ranges(settings, *profile, problems);
    }
    lint_operations(settings, problems);
    const std::vector<FileUse> files = files_used(settings, table);
    lint_files(files, problems);
    lint_images(images_used(settings), problems);
    return problems;
}

} // namespace inspect
