#include "gang/Fit.h"

#include "memory/MemoryMap.h"

#include <algorithm>

namespace gang
{

namespace
{

bool is_written(const Profile& device, unsigned int address, const Settings& settings)
{
    const bool left_out = (!settings.include_encrypted && device.is_encrypted_flash(address)) ||
                          (!settings.include_unencrypted && device.is_unencrypted_flash(address));
    return !left_out && device.get_memory_type(address) != MEMORY_OTHER;
}

} // namespace

QString misfit(const Profile& device, const QString& image, const Settings& settings,
               const std::optional<NumberSlot>& slot)
{
    MemoryMap map(MemoryMap::default_chunk_size);
    if (!map.load_from_hex_file(image, device.boundaries)) {
        return QStringLiteral("the image cannot be read as an Intel HEX file");
    }
    const auto& pieces = map.blobs();
    if (std::none_of(pieces.begin(), pieces.end(), [&](const auto& piece) {
            return is_written(device, piece->address, settings);
        })) {
        return QStringLiteral("the image holds nothing for this device");
    }
    for (int i = 0; slot && i < slot->size; ++i) {
        if (!is_written(device, slot->address + static_cast<unsigned int>(i), settings)) {
            return QStringLiteral(
                "the serial number does not lie in the part of the device that is written");
        }
    }
    return {};
}

} // namespace gang
