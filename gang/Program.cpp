#include "gang/Program.h"

#include "gang/Arguments.h"
#include "gang/ReportCommand.h"
#include "gang/Session.h"
#include "process/ProcessSetup.h"
#include "util/Platform.h"

#include <QCoreApplication>

#include <cstdio>
#include <exception>

namespace gang
{

namespace
{

int print(const QString& text)
{
    std::printf("%s\n", text.toLocal8Bit().constData());
    return ExitAllOk;
}

int run(const QStringList& command_line)
{
    if (command_line.value(1) == QLatin1String("report")) {
        return run_report(command_line.mid(0, 1) + command_line.mid(2));
    }
    const Arguments arguments = parse_arguments(command_line);
    switch (arguments.action) {
    case Arguments::Action::ShowHelp:
        return print(arguments.help_text.trimmed());
    case Arguments::Action::ShowVersion:
        return print(QCoreApplication::applicationName() + QLatin1Char(' ') +
                     QCoreApplication::applicationVersion());
    case Arguments::Action::Run:
        break;
    }
    return Session(arguments).run();
}

} // namespace

int run_program(int argc, char** argv)
{
    Platform::occupy_standard_descriptors();
    // A reader of the events may close its pipe; the uploads and their record go on.
    Platform::set_up_signals();
    // Child processes wake the event dispatcher often; Qt's own costs less than GLib's.
    qputenv("QT_NO_GLIB", "1");
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("zserial-gang"));
    QCoreApplication::setApplicationVersion(QStringLiteral(ZSERIAL_VERSION));
    try {
        return run(QCoreApplication::arguments());
    } catch (const std::exception& failure) {
        print_error(QString::fromStdString(failure.what()));
        return ExitNotStarted;
    }
}

} // namespace gang
