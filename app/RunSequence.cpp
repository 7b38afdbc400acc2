#include "app/RunSequence.h"

#include "app/CommandLine.h"
#include "app/Console.h"
#include "app/Failure.h"
#include "app/OperationDispatch.h"
#include "device/ZarnSerialDevice.h"

#include <QEventLoop>
#include <QException>
#include <QSerialPort>
#include <QTimer>

#include <cstdlib>

namespace
{

/// Serial writes and queued signals get this long to leave before the port is closed.
constexpr int closing_ms = 1000;

void stop_at(const Outcome& outcome)
{
    if (outcome) {
        refuse_and_exit(*outcome);
    }
}

QStringList arguments_after_program_name(int argc, char** argv)
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i) {
        arguments << QString::fromUtf8(argv[i]);
    }
    return arguments;
}

void open_frame_log(const QString& name)
{
    if (name.isEmpty()) {
        return;
    }
    serial_record.setFileName(name);
    if (!serial_record.open(QIODevice::Append)) {
        fail(QStringLiteral("Could not open ") + name + QStringLiteral(" for writing!\n"));
    }
}

Settings settings_from(const QStringList& arguments)
{
    if (arguments.isEmpty()) {
        refuse_and_exit({QStringLiteral("Please specify an argument"), true});
    }
    Settings settings;
    stop_at(
        command_line::scan(arguments, command_line::can_open_for_reading_and_writing, settings));
    stop_at(command_line::check_conflicts(settings));
    open_frame_log(settings.log_file);
    stop_at(command_line::check_request(settings));
    return settings;
}

/// The device opens the port again by itself; this only tells a wrong name early.
void check_port(const QString& name)
{
    const QString message =
        QStringLiteral("Port ") + name + QStringLiteral(" cannot be opened. Aborting...\n");
    try {
        QSerialPort port(name);
        if (!port.open(QIODevice::ReadWrite)) {
            fail(message);
        }
    } catch (const QException& exception) {
        fail(message + QString::fromLocal8Bit(exception.what()) + QStringLiteral("\n"));
    }
}

void connect_console(ZarnSerialDevice& device)
{
    QObject::connect(&device, &ZarnSerialDevice::sig_error, a, slot_error);
    QObject::connect(&device, &ZarnSerialDevice::sig_upload_progress, a, slot_progress);
    QObject::connect(&device, &ZarnSerialDevice::sig_verify_progress, a, slot_progress);
    QObject::connect(&device, &ZarnSerialDevice::sig_encoded_response, a, slot_command_received);
    QObject::connect(&device, &ZarnSerialDevice::sig_encoded_command, a, slot_command_transmitted);
}

QString hex4(unsigned int value)
{
    return QStringLiteral("%1").arg(value, 4, 16, QLatin1Char('0'));
}

void set_version(ZarnSerialDevice& device, unsigned int version)
{
    if (!device.set_bootloader_version(static_cast<unsigned short>(version))) {
        fail(QStringLiteral("Could not find device profile matching specified 0x%1, aborting...")
                 .arg(hex4(version)));
    }
    out << QStringLiteral("Version set to 0x%1 successfully!").arg(hex4(version));
    out.flush();
}

void run_entry_procedure(ZarnSerialDevice& device)
{
    unsigned short version = 0;
    if (device.QV_entry_procedure(&version)) {
        out << QStringLiteral("Retrieved version number during QV entry procedure: 0x%1\n")
                   .arg(hex4(version));
    } else if (version == 0) {
        fail(QStringLiteral("Did not succeed in QV entry procedure, aborting..."));
    } else {
        fail(QStringLiteral("Found version 0x%1 but could not load profile for this version. "
                            "Aborting...")
                 .arg(hex4(version)));
    }
}

/// Asks for the version of a profile that is already selected; on a fresh device there is none.
void request_version(ZarnSerialDevice& device)
{
    const unsigned short version = device.get_bootloader_version();
    if (version == 0) {
        fail(QStringLiteral("Version request failed, aborting...\n"));
    }
    out << QStringLiteral("version %1\n").arg(hex4(version).toUpper());
}

void settle_version(ZarnSerialDevice& device, const Settings& settings)
{
    if (settings.bootloader_version != 0) {
        set_version(device, settings.bootloader_version);
    } else if (settings.entry_procedure_wanted) {
        run_entry_procedure(device);
    } else if (settings.version_request_wanted) {
        request_version(device);
    }
}

void let_pending_events_pass()
{
    QEventLoop loop;
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    timer.start(closing_ms);
    loop.exec();
}

} // namespace

int run_sequence(int& argc, char** argv)
{
    make_application(argc, argv);
    const Settings settings = settings_from(arguments_after_program_name(argc, argv));
    check_port(settings.port_name);

    ZarnSerialDevice device(settings.port_name, process_events_handler, settings.baud,
                            settings.half_duplex,
                            static_cast<unsigned short>(settings.bootloader_version));
    connect_console(device);
    settle_version(device, settings);
    OperationDispatch(device, settings).run();
    if (settings.reset_wanted) {
        out << "Resetting device\n";
        device.reset();
    }
    out << "\nAll operations completed succesfully!\n";
    out.flush();
    let_pending_events_pass();
    delete a;
    a = nullptr;
    return EXIT_SUCCESS;
}
