#include "sim/device/MemoryGeometry.h"

#include "profile/Profile.h"
#include "sim/device/Command.h"

namespace sim
{

MemoryGeometry geometry_of(const Profile& profile, bool eeprom)
{
    const auto& values = profile.attributes;
    MemoryGeometry memory;
    memory.start = eeprom ? values[Profile::eeprom_start_address] : 0;
    memory.word_size = values[eeprom ? Profile::eeprom_word_size : Profile::flash_word_size];
    memory.row_size = values[eeprom ? Profile::eeprom_row_size : Profile::flash_row_size];
    const unsigned int words_per_address =
        values[eeprom ? Profile::eeprom_words_per_address : Profile::flash_words_per_address];
    memory.bytes_per_address = words_per_address == 0 ? 0 : memory.word_size / words_per_address;
    return memory;
}

std::uint64_t byte_address_of(const Profile& profile, const Command& command)
{
    return geometry_of(profile, command.is_eeprom()).byte_address(command.word_address());
}

unsigned int rows_of(const Profile& profile, const Command& command)
{
    const std::uint64_t row_size = geometry_of(profile, command.is_eeprom()).row_size;
    const auto bytes = static_cast<std::uint64_t>(command.data().size());
    return row_size == 0 ? 0 : static_cast<unsigned int>((bytes + row_size - 1) / row_size);
}

} // namespace sim
