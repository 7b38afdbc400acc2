#include "sim/Arguments.h"
#include "sim/DeviceTable.h"
#include "sim/MemoryImage.h"
#include "sim/SimulatedDevice.h"
#include "sim/StopSignals.h"
#include "sim/Tally.h"

#include <QCoreApplication>
#include <QTextStream>

#include <cstdio>
#include <exception>
#include <optional>

namespace
{

constexpr int exit_good = 0;
constexpr int exit_check_failed = 1;
constexpr int exit_cannot = 2;

/// Each line goes out at once: whoever started the program waits for the first one.
void print(const QString& line)
{
    QTextStream(stdout) << line << '\n';
}

void complain(const QString& line)
{
    QTextStream(stderr) << "zserial-sim: " << line << '\n';
}

void fill_memory(sim::DeviceMemory& memory, const QString& path)
{
    const unsigned int left_out = sim::MemoryImage(path).fill(memory);
    if (left_out != 0) {
        complain(QStringLiteral("%1: %2 bytes lie outside of the device's memory and are left out")
                     .arg(path, QString::number(left_out)));
    }
}

int check_memory(const sim::DeviceMemory& memory, const sim::MemoryImage& image)
{
    const sim::MemoryImage::Comparison comparison = image.compare(memory);
    print(comparison.report);
    return comparison.matches ? exit_good : exit_check_failed;
}

int serve(const sim::Arguments& arguments)
{
    const sim::DeviceTable table(arguments.table);
    sim::SimulatedDevice device(table.choose(arguments.version), arguments.options);
    if (!arguments.memory_image.isEmpty()) {
        fill_memory(device.memory(), arguments.memory_image);
    }
    // Loaded before serving, so that a mistyped name shows at once.
    std::optional<sim::MemoryImage> expected;
    if (!arguments.check_image.isEmpty()) {
        expected.emplace(arguments.check_image);
    }
    sim::Tally tally;
    QObject::connect(&device, &sim::SimulatedDevice::command_received,
                     [&tally](const sim::Command& command) { tally.count(command); });
    const sim::StopSignals signals;
    QObject::connect(&signals, &sim::StopSignals::stop_requested, &QCoreApplication::quit);

    print(device.port_path());
    QCoreApplication::exec();
    print(tally.summary(device.memory().statistics()).join(QLatin1Char('\n')));
    const int status = expected ? check_memory(device.memory(), *expected) : exit_good;
    if (!arguments.save_image.isEmpty()) {
        sim::save_memory(device.memory(), arguments.save_image);
    }
    return status;
}

int run(const sim::Arguments& arguments)
{
    switch (arguments.action) {
    case sim::Arguments::Action::ShowHelp:
        print(arguments.help_text.trimmed());
        return exit_good;
    case sim::Arguments::Action::ShowVersion:
        print(QCoreApplication::applicationName() + QLatin1Char(' ') +
              QCoreApplication::applicationVersion());
        return exit_good;
    case sim::Arguments::Action::ListDevices:
        for (const QString& line : sim::DeviceTable(arguments.table).listing()) {
            print(line);
        }
        return exit_good;
    case sim::Arguments::Action::Serve:
        break;
    }
    return serve(arguments);
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("zserial-sim"));
    QCoreApplication::setApplicationVersion(QStringLiteral(ZSERIAL_VERSION));
    try {
        return run(sim::parse_arguments(QCoreApplication::arguments()));
    } catch (const std::exception& failure) {
        complain(QString::fromStdString(failure.what()));
        return exit_cannot;
    }
}
