#include "gang/ToolCommand.h"

#include "app/CommandLine.h"
#include "app/Options.h"
#include "gang/ArgumentError.h"

#include <algorithm>
#include <optional>

namespace gang
{

namespace
{

bool pass_any_file(const QString&)
{
    return true;
}

void stop_at(const std::optional<Failure>& failure)
{
    if (failure) {
        throw ArgumentError(
            QStringLiteral("zserial refuses these arguments: %1").arg(failure->message.trimmed()));
    }
}

} // namespace

Settings settings_from(const QStringList& words)
{
    Settings settings;
    stop_at(command_line::scan(words, pass_any_file, settings));
    stop_at(command_line::check_conflicts(settings));
    stop_at(command_line::check_request(settings));
    return settings;
}

ToolCommand::ToolCommand(const QStringList& arguments, const PortNames& port) : m_port(port)
{
    take_words(arguments);
    m_settings = settings_from(words({}));
}

void ToolCommand::take_words(const QStringList& arguments)
{
    QStringList expanded;
    for (const QString& argument : arguments) {
        expanded << expand(argument, m_port);
    }
    for (int i = 0; i < expanded.size(); ++i) {
        const command_line::Option* option = command_line::find_option(expanded.at(i));
        if (option == nullptr) {
            m_words.push_back({expanded.at(i), Role::Unknown});
            continue;
        }
        take_option(expanded.mid(i, 1 + option->arguments));
        i += option->arguments;
    }
}

/// The last word of an option is its file, if it takes one.
void ToolCommand::take_option(const QStringList& own_words)
{
    static const QHash<QString, Role> files = {
        {QStringLiteral("-w"), Role::Image},    {QStringLiteral("-W"), Role::Image},
        {QStringLiteral("-v"), Role::Image},    {QStringLiteral("-wv"), Role::Image},
        {QStringLiteral("-r"), Role::ReadFile}, {QStringLiteral("-l"), Role::ReadFile},
        {QStringLiteral("-x"), Role::FrameLog}};
    const QString& option = own_words.first();
    if (option == QLatin1String("-s")) {
        throw ArgumentError(QStringLiteral("the ports are named before --, not with -s"));
    }
    m_words.push_back({option, Role::Option});
    for (int i = 1; i < own_words.size(); ++i) {
        m_words.push_back({own_words.at(i), Role::Value});
    }
    if (files.contains(option) && own_words.size() > 1) {
        Word& file = m_words.back();
        file.role = files.value(option);
        file.text = file.text.isEmpty() ? file.text : absolute_name(file.text);
    }
}

QStringList ToolCommand::texts_of(Role role) const
{
    QStringList texts;
    for (const Word& word : m_words) {
        if (word.role == role && !word.text.isEmpty()) {
            texts << word.text;
        }
    }
    return texts;
}

QStringList ToolCommand::images() const
{
    QStringList images = texts_of(Role::Image);
    images.removeDuplicates();
    if (m_settings.verify_file == read_file()) {
        images.removeAll(read_file());
    }
    return images;
}

QString ToolCommand::written_image() const
{
    if (m_settings.write_and_verify_wanted) {
        return m_settings.write_and_verify_file;
    }
    return m_settings.write_wanted || m_settings.write_range_wanted ? m_settings.write_file
                                                                    : QString();
}

/// With "-wv", zserial reads nothing into a file, whatever else is given.
QString ToolCommand::read_file() const
{
    return m_settings.write_and_verify_wanted ? QString() : m_settings.read_file;
}

bool ToolCommand::has_frame_log() const
{
    return std::any_of(m_words.begin(), m_words.end(),
                       [](const Word& word) { return word.role == Role::FrameLog; });
}

QStringList ToolCommand::outputs() const
{
    return texts_of(Role::ReadFile) + texts_of(Role::FrameLog);
}

QStringList ToolCommand::suspicious_arguments() const
{
    QStringList found;
    for (const QString& word : texts_of(Role::Unknown)) {
        found
            << QStringLiteral("zserial ignores the word \"%1\", which is not an option").arg(word);
    }
    const Settings& settings = m_settings;
    if (settings.write_and_verify_wanted &&
        (settings.write_wanted || settings.write_range_wanted || settings.read_wanted ||
         settings.read_range_wanted || settings.verify_wanted || settings.erase_range_wanted)) {
        found << QStringLiteral("with -wv, zserial does not carry out -E, -w, -W, -r, -l or -v");
    }
    if (settings.version_request_wanted && settings.bootloader_version == 0) {
        found << QStringLiteral("with -V but without -B, every run fails: leave out -V");
    }
    return found;
}

QStringList ToolCommand::words(const QHash<QString, QString>& copies) const
{
    QStringList words{QStringLiteral("-s"), m_port.path};
    for (const Word& word : m_words) {
        words << (word.role == Role::Image ? copies.value(word.text, word.text) : word.text);
    }
    return words;
}

QStringList ToolCommand::words_without_reset(const QHash<QString, QString>& copies) const
{
    ToolCommand command = *this;
    auto& words = command.m_words;
    words.erase(std::remove_if(words.begin(), words.end(),
                               [](const Word& word) {
                                   return word.role == Role::Option &&
                                          word.text == QLatin1String("-R");
                               }),
                words.end());
    return command.words(copies);
}

QStringList ToolCommand::words_to_certify(const QHash<QString, QString>& copies) const
{
    const QString image = written_image();
    QStringList words{QStringLiteral("-s"), m_port.path, QStringLiteral("-v"),
                      copies.value(image, image)};
    if (m_settings.half_duplex) {
        words << QStringLiteral("-h");
    }
    if (!m_settings.include_encrypted) {
        words << QStringLiteral("-xe");
    }
    if (!m_settings.include_unencrypted) {
        words << QStringLiteral("-xu");
    }
    if (m_settings.reset_wanted) {
        words << QStringLiteral("-R");
    }
    if (!m_settings.log_file.isEmpty()) {
        words << QStringLiteral("-x") << m_settings.log_file;
    }
    return words;
}

} // namespace gang
