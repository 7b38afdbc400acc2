#include "fuzz/Target.h"
#include "profile/Profile.h"
#include "profile/ProfileTable.h"

#include <QBuffer>
#include <QException>

namespace
{

void ask_everything(const Profile& profile)
{
    for (const MemoryType type : {MEMORY_FLASH, MEMORY_EEPROM, MEMORY_OTHER}) {
        profile.get_address_divisor(type);
        profile.get_page_size(type);
        profile.has_memory_type(type);
    }
    for (const unsigned int boundary : profile.boundaries) {
        for (const unsigned int address : {boundary - 1, boundary, boundary + 1}) {
            const MemoryType type = profile.get_memory_type(address);
            must_hold(profile.is_bootloader(address) == (type == MEMORY_OTHER));
            must_hold(!profile.is_encrypted_flash(address) ||
                      !profile.is_unencrypted_flash(address));
            profile.byte_to_word_address(address);
        }
    }
    must_hold(!profile.get_details().isEmpty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const bool silent = silence_debug_messages();
    must_hold(silent);
    QByteArray text = bytes_of(data, size);
    QBuffer table(&text);
    table.open(QIODevice::ReadOnly);
    while (const auto line = read_profile_table_line(table)) {
        if (line->kind != ProfileTableLine::Kind::Row) {
            continue;
        }
        must_hold(line->fields.size() == Profile::_enum_size);
        try {
            ask_everything(Profile(line->fields));
        } catch (const QException&) {
            // A field that is not a number is reported, and the table is refused.
        }
    }
    return 0;
}
