#include "app/RunSequence.h"

#include "app/CommandLine.h"
#include "app/Console.h"
#include "app/OperationDispatch.h"
#include "device/ZarnSerialDevice.h"
#include "util/Platform.h"

#include <QException>
#include <QSerialPort>

#include <cstdlib>

namespace
{

QStringList arguments_after_program_name(int argc, char** argv)
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i) {
        arguments << QString::fromUtf8(argv[i]);
    }
    return arguments;
}

/// The device opens the port again itself; this only reports a wrong name early.
std::optional<Failure> check_port(const QString& name)
{
    const QString message =
        QStringLiteral("Port ") + name + QStringLiteral(" cannot be opened. Aborting...\n");
    try {
        QSerialPort port(name);
        if (!port.open(QIODevice::ReadWrite)) {
            return Failure{message};
        }
    } catch (const QException& exception) {
        return Failure{message + QString::fromLocal8Bit(exception.what()) + QStringLiteral("\n")};
    }
    return std::nullopt;
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

std::optional<Failure> set_version(ZarnSerialDevice& device, unsigned int version)
{
    if (!device.set_bootloader_version(static_cast<unsigned short>(version))) {
        return Failure{
            QStringLiteral("Could not find device profile matching specified 0x%1, aborting...")
                .arg(hex4(version))};
    }
    out << QStringLiteral("Version set to 0x%1 successfully!").arg(hex4(version));
    out.flush();
    return std::nullopt;
}

std::optional<Failure> run_entry_procedure(ZarnSerialDevice& device)
{
    unsigned short version = 0;
    if (device.QV_entry_procedure(&version)) {
        out << QStringLiteral("Retrieved version number during QV entry procedure: 0x%1\n")
                   .arg(hex4(version));
        return std::nullopt;
    }
    if (version == 0) {
        return Failure{QStringLiteral("Did not succeed in QV entry procedure, aborting...")};
    }
    return Failure{QStringLiteral("Found version 0x%1 but could not load profile for this version. "
                                  "Aborting...")
                       .arg(hex4(version))};
}

/// Asks for the version of a profile that is already selected; on a fresh device there is none.
std::optional<Failure> request_version(ZarnSerialDevice& device)
{
    const unsigned short version = device.get_bootloader_version();
    if (version == 0) {
        return Failure{QStringLiteral("Version request failed, aborting...\n")};
    }
    out << QStringLiteral("version %1\n").arg(hex4(version).toUpper());
    return std::nullopt;
}

std::optional<Failure> settle_version(ZarnSerialDevice& device, const Settings& settings)
{
    if (settings.bootloader_version != 0) {
        return set_version(device, settings.bootloader_version);
    }
    if (settings.entry_procedure_wanted) {
        return run_entry_procedure(device);
    }
    if (settings.version_request_wanted) {
        return request_version(device);
    }
    return std::nullopt;
}

void finish(ZarnSerialDevice& device, bool reset_wanted)
{
    if (reset_wanted) {
        out << "Resetting device\n";
        device.reset();
    }
    out << "\nAll operations completed succesfully!\n";
    out.flush();
    let_pending_events_pass();
    end_application();
}

std::optional<Failure> run(const QStringList& arguments)
{
    Settings settings;
    if (auto failure = command_line::take(
            arguments, {command_line::can_open_for_reading_and_writing, open_frame_log},
            settings)) {
        return failure;
    }
    if (auto failure = check_port(settings.port_name)) {
        return failure;
    }
    ZarnSerialDevice device(settings.port_name, process_events_handler, settings.baud,
                            settings.half_duplex,
                            static_cast<unsigned short>(settings.bootloader_version));
    connect_console(device);
    if (auto failure = settle_version(device, settings)) {
        return failure;
    }
    if (auto failure = OperationDispatch(device, settings, out).run()) {
        return failure;
    }
    finish(device, settings.reset_wanted);
    return std::nullopt;
}

void print(const Failure& failure)
{
    out << failure.message;
    if (failure.with_usage) {
        print_syntax();
    }
}

} // namespace

int run_sequence(int& argc, char** argv)
{
    Platform::occupy_standard_descriptors();
    Platform::let_impossible_writes_fail();
    make_application(argc, argv);
    try {
        if (const std::optional<Failure> outcome = run(arguments_after_program_name(argc, argv))) {
            print(*outcome);
            return EXIT_FAILURE;
        }
    } catch (...) {
        // Nothing further out catches it, so it ends the process abnormally. But the device has
        // been destroyed on the way here: its port is closed, and no lock keeps other runs out.
        throw;
    }
    return EXIT_SUCCESS;
}
