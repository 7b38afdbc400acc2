#include "gang/Commands.h"

#include "gang/ArgumentError.h"
#include "process/FileNames.h"

#include <QFileInfo>
#include <QHash>
#include <QRegularExpression>

namespace gang
{

namespace
{

/// Returns a path like those that match the pattern, with `variant` in place of the first wildcard
/// and "x" in place of the others.
QString sample_of(const QString& pattern, const QString& variant)
{
    static const QRegularExpression wildcard(QStringLiteral("\\*|\\?|\\[.[^\\]]*\\]"));
    const QRegularExpressionMatch first = wildcard.match(pattern);
    if (!first.hasMatch()) {
        return pattern;
    }
    QString rest = pattern.mid(first.capturedEnd());
    return pattern.left(first.capturedStart()) + variant +
           rest.replace(wildcard, QStringLiteral("x"));
}

/// Returns the named ports, or two sample ports for the pattern that differ as little as two ports
/// can, so that a file that ports would share is found before any port appears.
QStringList sample_ports(const Arguments& arguments)
{
    QStringList ports = arguments.ports;
    if (!arguments.watch.isEmpty()) {
        ports << sample_of(arguments.watch, QStringLiteral("1"))
              << sample_of(arguments.watch, QStringLiteral("2"));
        ports.removeDuplicates();
    }
    return ports;
}

void refuse_repeated_ports(const QStringList& ports)
{
    QHash<QString, QString> seen;
    for (const QString& port : ports) {
        const QString file = Platform::file_key(file_of_port(port));
        if (seen.contains(file)) {
            throw ArgumentError(
                QStringLiteral("%1 and %2 are the same port").arg(seen.value(file), port));
        }
        seen.insert(file, port);
    }
}

/// Returns the files that no run may overwrite: their file_key() and what they are.
QHash<QString, QString> inputs_of(const Arguments& arguments,
                                  const std::vector<ToolCommand>& commands)
{
    QHash<QString, QString> inputs{
        {Platform::file_key(arguments.table), QStringLiteral("the table")}};
    for (const ToolCommand& command : commands) {
        QStringList images = command.images();
        if (!command.written_image().isEmpty()) {
            images << command.written_image();
        }
        for (const QString& image : images) {
            inputs.insert(Platform::file_key(image), QStringLiteral("an image"));
        }
    }
    if (!arguments.record.isEmpty()) {
        inputs.insert(Platform::file_key(arguments.record), QStringLiteral("the record"));
    }
    if (!arguments.number_file.isEmpty()) {
        inputs.insert(Platform::file_key(arguments.number_file), QStringLiteral("the serial file"));
    }
    return inputs;
}

/// True if the path exists and is not a regular file, such as a terminal, which runs may share.
bool keeps_nothing(const QString& path)
{
    const QFileInfo file(path);
    return file.exists() && !file.isFile();
}

void refuse_shared_outputs(const Arguments& arguments, const std::vector<ToolCommand>& commands)
{
    const QHash<QString, QString> inputs = inputs_of(arguments, commands);
    QHash<QString, QString> writers;
    for (const ToolCommand& command : commands) {
        for (const QString& output : command.outputs()) {
            if (keeps_nothing(output)) {
                continue;
            }
            const QString file = Platform::file_key(output);
            if (inputs.contains(file)) {
                throw ArgumentError(QStringLiteral("%1 is %2 and would be overwritten")
                                        .arg(output, inputs.value(file)));
            }
            if (writers.contains(file)) {
                throw ArgumentError(
                    QStringLiteral(
                        "%1 would be written for %2 and for %3; put {name} or {n} into its name")
                        .arg(output, writers.value(file), command.port().path));
            }
            writers.insert(file, command.port().path);
        }
    }
}

/// Images are read at the start, before it is known which ports will appear.
void refuse_images_by_port(const std::vector<ToolCommand>& commands)
{
    if (commands.size() > 1 && commands[0].images() != commands[1].images()) {
        throw ArgumentError(
            QStringLiteral("with --watch, the name of an image must not depend on the port"));
    }
}

void check_operations(const Arguments& arguments, const ToolCommand& command)
{
    if (command.written_image().isEmpty() && arguments.certify) {
        throw ArgumentError(QStringLiteral("--certify needs -w, -W or -wv"));
    }
    if (command.written_image().isEmpty() && arguments.number_slot) {
        throw ArgumentError(QStringLiteral("serial numbers need -w, -W or -wv"));
    }
    if (command.settings().bootloader_version != 0 && arguments.expected_version) {
        throw ArgumentError(QStringLiteral(
            "--expect and -B exclude each other: with -B no device is asked for its version"));
    }
}

} // namespace

std::vector<ToolCommand> commands_of(const Arguments& arguments)
{
    refuse_repeated_ports(arguments.ports);
    const QStringList ports = sample_ports(arguments);
    std::vector<ToolCommand> commands;
    for (const QString& port : ports) {
        commands.emplace_back(arguments.tool_arguments,
                              names_of(port, static_cast<int>(commands.size()) + 1));
        check_operations(arguments, commands.back());
    }
    if (!arguments.watch.isEmpty()) {
        refuse_images_by_port(commands);
    }
    refuse_shared_outputs(arguments, commands);
    return commands;
}

} // namespace gang
