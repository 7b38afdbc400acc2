// Writes an image with verification. Run in the folder of device.txt: embed PORT VERSION IMAGE.
// Enter cancels.

#include "device/ZarnSerialDevice.h"
#include "memory/MemoryMap.h"
#include "profile/Profiles.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <cstdio>

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    const auto version = words.value(2).toUShort(nullptr, 16);
    if (words.size() != 4 || !Profiles::has_profile(version)) {
        std::puts("embed PORT VERSION IMAGE; VERSION is a device of device.txt, such as 0110");
        return 2;
    }
    ZarnSerialDevice device(
        words.at(1), [] { QCoreApplication::processEvents(); }, 9600, false, version);
    QObject::connect(&device, &ZarnSerialDevice::sig_error,
                     [](const QString& text) { std::printf("\n%s\n", qUtf8Printable(text)); });
    QObject::connect(
        &device, &ZarnSerialDevice::sig_upload_progress,
        [](unsigned int bytes, unsigned int all) { std::printf("\r%u of %u bytes", bytes, all); });
    bool cancelled = false;
    QSocketNotifier keyboard(fileno(stdin), QSocketNotifier::Read);
    QObject::connect(&keyboard, &QSocketNotifier::activated, [&] {
        cancelled = std::getchar() != EOF;
        keyboard.setEnabled(false);
    });
    MemoryMap image(MemoryMap::default_chunk_size);
    if (!image.load_from_hex_file(words.at(3), device.profile()->boundaries) ||
        !device.QV_entry_procedure(nullptr)) {
        return 1;
    }
    if (device.get_bootloader_version() != version) {
        std::puts("another device");
        return 1;
    }
    const bool written = device.write_with_verify(&image, cancelled, true, true, false);
    std::puts(written ? "\nwritten" : "\nnot written");
    return written ? 0 : 1;
}
