#include "gang/Fit.h"

#include "gang/Problems.h"
#include "inspect/DeviceFit.h"

#include <algorithm>

namespace gang
{

namespace
{

bool is_written(const Profile& device, unsigned int address, const Settings& settings)
{
    switch (inspect::area_of(device, address)) {
    case inspect::Area::Encrypted:
        return settings.include_encrypted;
    case inspect::Area::Unencrypted:
        return settings.include_unencrypted;
    case inspect::Area::Eeprom:
        return true;
    case inspect::Area::Bootloader:
    case inspect::Area::Outside:
        break;
    }
    return false;
}

} // namespace

/// zserial writes or skips a whole piece, depending on its first address.
QString reason_nothing_is_written(const Profile& device, const inspect::ImageFile& image,
                                  const Settings& settings, const std::optional<NumberSlot>& slot)
{
    const auto& pieces = image.image.blobs();
    if (std::none_of(pieces.begin(), pieces.end(), [&](const auto& piece) {
            return is_written(device, piece->address, settings);
        })) {
        return QStringLiteral("the image holds nothing for this device");
    }
    for (int i = 0; slot && i < slot->size; ++i) {
        if (!is_written(device, slot->address + static_cast<unsigned int>(i), settings)) {
            return QStringLiteral("the serial number lies outside what is written to this device");
        }
    }
    return {};
}

QStringList fit_problems(const Profile& device, const inspect::ImageFile& image)
{
    QStringList lines;
    for (const inspect::Problem& problem : inspect::fit(device, image).problems) {
        if (prevents_start(problem)) {
            lines << text_of(problem);
        }
    }
    return lines;
}

bool has_room(const Profile& device, const inspect::ImageFile& image)
{
    const std::vector<inspect::AreaPiece> pieces = inspect::cut(device, image.segments);
    return std::none_of(pieces.begin(), pieces.end(), [](const inspect::AreaPiece& piece) {
        return piece.area == inspect::Area::Outside;
    });
}

} // namespace gang
