#include "process/ProcessSetup.h"
#include "sim/program/Console.h"
#include "sim/program/Session.h"
#include "util/Platform.h"

#include <QCoreApplication>

#include <exception>

namespace
{

int list_devices(const QString& table)
{
    for (const QString& line : sim::DeviceTable(table).listing()) {
        sim::print(line);
    }
    return sim::ExitGood;
}

int run(const sim::Arguments& arguments)
{
    switch (arguments.action) {
    case sim::Arguments::Action::ShowHelp:
        sim::print(arguments.help_text.trimmed());
        return sim::ExitGood;
    case sim::Arguments::Action::ShowVersion:
        sim::print(QCoreApplication::applicationName() + QLatin1Char(' ') +
                   QCoreApplication::applicationVersion());
        return sim::ExitGood;
    case sim::Arguments::Action::ListDevices:
        return list_devices(arguments.table);
    case sim::Arguments::Action::Serve:
        break;
    }
    return sim::Session(arguments).run();
}

} // namespace

int main(int argc, char** argv)
{
    Platform::occupy_standard_descriptors();
    Platform::set_up_signals();
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("zserial-sim"));
    QCoreApplication::setApplicationVersion(QStringLiteral(ZSERIAL_VERSION));
    try {
        return run(sim::parse_arguments(QCoreApplication::arguments()));
    } catch (const std::exception& failure) {
        sim::complain(QString::fromStdString(failure.what()));
        return sim::ExitCannot;
    }
}
