#include "inspect/Program.h"

#include "inspect/CommandWords.h"
#include "inspect/Subcommand.h"
#include "inspect/UsageError.h"

#include <QCoreApplication>
#include <QJsonDocument>

#include <algorithm>
#include <exception>
#include <new>

namespace inspect
{

namespace
{

QByteArray version_text()
{
    return (QCoreApplication::applicationName() + QLatin1Char(' ') +
            QCoreApplication::applicationVersion() + QLatin1Char('\n'))
        .toLocal8Bit();
}

QByteArray general_help()
{
    QString text = QStringLiteral(
        "Usage: zserial-inspect SUBCOMMAND [options] [file...]\n"
        "Looks into what zserial works with, before it does. Opens no port and writes nothing\n"
        "that it was not asked to write.\n\n"
        "Subcommands:\n");
    for (const Subcommand* subcommand : subcommands()) {
        text += QStringLiteral("  %1  %2\n")
                    .arg(QString::fromLatin1(subcommand->name).leftJustified(6),
                         QString::fromLatin1(subcommand->summary));
    }
    text += QStringLiteral("\nOptions:\n"
                           "  --help     Show this help, or that of the subcommand, and exit.\n"
                           "  --version  Show the version and exit.\n\n"
                           "Exit status: 0 nothing is wrong, 1 problems found, 2 what was asked "
                           "could not be done.\n");
    return text.toLocal8Bit();
}

const Subcommand& subcommand_of(const QString& name)
{
    const auto& all = subcommands();
    const auto found = std::find_if(all.begin(), all.end(), [&](const Subcommand* subcommand) {
        return name == QLatin1String(subcommand->name);
    });
    if (found == all.end()) {
        throw UsageError(QStringLiteral("there is no subcommand %1; --help lists them").arg(name));
    }
    return **found;
}

Outcome run_subcommand(const Subcommand& subcommand, const QStringList& words,
                       const Terminal& terminal)
{
    const CommandWords options(subcommand, words);
    if (options.wants_help()) {
        return {ExitFine, options.help_text().toLocal8Bit(), {}};
    }
    if (options.wants_version()) {
        return {ExitFine, version_text(), {}};
    }
    const Report report = subcommand.run(options);
    if (options.wants_json()) {
        return {report.status(), QJsonDocument(json_of(report)).toJson(), {}};
    }
    return {report.status(), text_of(report, terminal.colour).toLocal8Bit(), {}};
}

Outcome run_words(const QStringList& words, const Terminal& terminal)
{
    if (words.isEmpty()) {
        throw UsageError(QStringLiteral("no subcommand is named; --help lists them"));
    }
    if (words.first() == QLatin1String("--help") || words.first() == QLatin1String("-h")) {
        return {ExitFine, general_help(), {}};
    }
    if (words.first() == QLatin1String("--version") || words.first() == QLatin1String("-v")) {
        return {ExitFine, version_text(), {}};
    }
    return run_subcommand(subcommand_of(words.first()), words.mid(1), terminal);
}

Outcome cannot(const QString& reason)
{
    return {ExitCannot, {}, QStringLiteral("zserial-inspect: %1\n").arg(reason).toLocal8Bit()};
}

} // namespace

Outcome run(const QStringList& command_line, const Terminal& terminal)
{
    try {
        return run_words(command_line.mid(1), terminal);
    } catch (const std::bad_alloc&) {
        return cannot(QStringLiteral("not enough memory"));
    } catch (const std::exception& failure) {
        return cannot(QString::fromStdString(failure.what()));
    }
}

} // namespace inspect
