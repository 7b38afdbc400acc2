#include "upload.h"

#include "device/ZarnSerialDevice.h"
#include "memory/MemoryMap.h"

#include <QCoreApplication>

std::optional<QString> upload(const QString& port, const QString& image)
{
    ZarnSerialDevice device(
        port, [] { QCoreApplication::processEvents(); }, 9600, false, 0);
    QString reason;
    QObject::connect(&device, &ZarnSerialDevice::sig_error,
                     [&reason](const QString& text) { reason = text; });
    if (!device.QV_entry_procedure(nullptr)) {
        return reason;
    }
    MemoryMap map(MemoryMap::default_chunk_size);
    if (!map.load_from_hex_file(image, device.profile()->boundaries)) {
        return QStringLiteral("cannot load ") + image;
    }
    const bool goes_on = false;
    if (!device.write_with_verify(&map, goes_on, true, true, false)) {
        return reason;
    }
    device.reset();
    return std::nullopt;
}
