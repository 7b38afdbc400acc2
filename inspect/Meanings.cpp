#include "inspect/Meanings.h"

#include "inspect/Figures.h"

#include <array>

namespace inspect
{

namespace
{

constexpr std::array<const char*, Profile::_enum_size> MEANINGS = {
    "version that the bootloader reports",
    "rate of the line, in baud, once the version is known",
    "name in messages",
    "end of flash as a word address; not used",
    "end of flash, exclusive: byte address %1",
    "start of the bootloader: byte address %1",
    "end of the bootloader, start of user flash: byte address %1",
    "%2 of flash per page of an erase command",
    "%2 per flash write or read",
    "%2 per flash word",
    "addresses that one flash word takes: %3 per address",
    "flash reads begin and end at multiples of %2",
    "erased flash word, laid out from its top byte",
    "bytes of that word; not used",
    "start of EEPROM: byte address %1",
    "end of EEPROM, exclusive, in EEPROM addresses: byte address %1",
    "%2 per EEPROM word",
    "addresses that one EEPROM word takes: %3 per address",
    "%2 per EEPROM write or read",
    "EEPROM reads begin and end at multiples of %2",
    "erased EEPROM word, laid out from its top byte",
    "bytes of that word; not used",
    "%2 of EEPROM; not used",
    "start of unencrypted flash: byte address %1",
    "end of unencrypted flash, exclusive: byte address %1",
};

} // namespace

QString meaning_of(const TableRow& row, Profile::Attr attribute)
{
    const auto index = static_cast<std::size_t>(attribute);
    const unsigned int value = row.profile->attributes.at(index);
    const MemoryType memory =
        attribute < Profile::eeprom_start_address ? MEMORY_FLASH : MEMORY_EEPROM;
    QString text = QString::fromLatin1(MEANINGS.at(index));
    text.replace(QLatin1String("%1"), address_text(value));
    text.replace(QLatin1String("%2"), size_text(value));
    text.replace(QLatin1String("%3"), size_text(row.profile->get_address_divisor(memory)));
    return text;
}

} // namespace inspect
