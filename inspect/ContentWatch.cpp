#include "inspect/ContentWatch.h"

namespace inspect
{

QString written_image(const Settings& settings)
{
    return settings.write_and_verify_wanted ? settings.write_and_verify_file : settings.write_file;
}

ContentWatch::ContentWatch(const sim::DeviceMemory& memory, const Settings& settings)
    : m_memory(memory),
      m_flash_is_given_up(settings.erase_all_wanted),
      m_held(memory.programmed_ranges())
{
    // Of an image that does not load, nothing is written either.
    m_image.load_from_hex_file(written_image(settings), {});
}

LostContent ContentWatch::lost() const
{
    LostContent lost;
    for (const auto& [start, held] : m_held) {
        const QByteArray left = m_memory.read(start, static_cast<unsigned int>(held.size()));
        for (int i = 0; i < held.size(); ++i) {
            const unsigned int address = start + static_cast<unsigned int>(i);
            if (left.at(i) == held.at(i) || is_named(address)) {
                continue;
            }
            if (m_memory.is_in_eeprom(address, 1)) {
                lost.eeprom.add(address);
            } else if (!m_flash_is_given_up) {
                lost.flash.add(address);
            }
        }
    }
    return lost;
}

bool ContentWatch::is_named(unsigned int address) const
{
    char byte = 0;
    return m_image.read(address, 1, &byte);
}

} // namespace inspect
