// Figures that no command can be built from, or that the line cannot carry.

#include "device/GeometryChecks.h"
#include "inspect/Figures.h"
#include "inspect/Frames.h"
#include "inspect/RowLint.h"
#include "profile/MemoryAttributes.h"

#include <limits>

namespace inspect
{

namespace
{

constexpr unsigned int most_words = 255;
constexpr unsigned int longest_answer = 65535;
constexpr unsigned int highest_word_address = 0xFFFFFF;
constexpr double answer_seconds = 0.3;

/// What is wrong with the figures of a memory, and in which column.
struct Fault {
    Reason reason;
    Code code = Code::WordsPerAddressRange;
    Profile::Attr attribute = Profile::_enum_size;
};

/// The checks of the uploader build on each other, so the first that fails names the attribute.
Fault fault_of(const Profile& profile, MemoryType memory)
{
    if (auto reason = geometry::check_words(profile, memory)) {
        return {reason, Code::WordsPerAddressRange, ATTR_WORDS_PER_ADDRESS.at(memory)};
    }
    if (auto reason = geometry::check_row(profile, memory)) {
        return profile.get_word_size(memory) > geometry::longest_buffer
                   ? Fault{reason, Code::WordSizeRange, ATTR_MEMORY_WORD_SIZE.at(memory)}
                   : Fault{reason, Code::RowSizeRange, ATTR_MEMORY_ROW_SIZE.at(memory)};
    }
    if (auto reason = geometry::check_block(profile, memory)) {
        return {reason, Code::BlockSizeRange, ATTR_MEMORY_BLOCK_SIZE.at(memory)};
    }
    if (memory == MEMORY_EEPROM) {
        return {};
    }
    const Reason page = geometry::check_page(profile);
    return {page ? page : geometry::check_page_step(profile), Code::PageSizeRange,
            Profile::flash_page_size};
}

void check_geometry(RowLint& lint, MemoryType memory)
{
    const Fault fault = fault_of(lint.profile, memory);
    if (fault.reason) {
        lint.add(fault.code, fault.attribute, *fault.reason);
    }
}

/// Whether the memory exists, that is, has both words and addresses. Reports it if it has only one.
bool exists(RowLint& lint, MemoryType memory)
{
    const Profile& profile = lint.profile;
    const quint64 begin = profile.get_min_address(memory);
    const quint64 end = profile.get_max_address(memory);
    const bool has_words = profile.has_memory_type(memory);
    const QString range = QStringLiteral("%1 goes from %2 to %3")
                              .arg(name_of(memory), address_text(begin), address_text(end));
    if (has_words && profile.get_address_divisor(memory) == 0) {
        return false; // scaled limits are meaningless
    }
    if (has_words && begin >= end) {
        lint.add(Code::MemoryEmpty, ATTR_MEMORY_MAX_ADDR.at(memory), range + QLatin1Char('.'));
    }
    if (!has_words && begin < end) {
        lint.add(Code::MemoryWithoutWords, ATTR_MEMORY_WORD_SIZE.at(memory),
                 range + QStringLiteral(" and its words have 0 bytes."));
    }
    return has_words && begin < end;
}

void check_words(RowLint& lint, MemoryType memory)
{
    const unsigned int word = lint.profile.get_word_size(memory);
    for (const MemoryAttributes& sizes : {ATTR_MEMORY_ROW_SIZE, ATTR_MEMORY_BLOCK_SIZE}) {
        const Profile::Attr attribute = sizes.at(memory);
        const unsigned int words =
            lint.profile.attributes.at(static_cast<std::size_t>(attribute)) / word;
        if (words > most_words) {
            lint.add(Code::CommandWords, attribute,
                     QStringLiteral("%1 is %2 words; commands say %3.")
                         .arg(QLatin1String(meta_attr.valueToKey(attribute)))
                         .arg(words)
                         .arg(words & most_words));
        }
    }
    const unsigned int row = lint.profile.get_row_size(memory);
    const quint64 answer = quint64{(row / word) & most_words} * word;
    if (answer > longest_answer) {
        lint.add(Code::AnswerTooLong, ATTR_MEMORY_WORD_SIZE.at(memory),
                 QStringLiteral("A read of a %1 row asks for %2 bytes.")
                     .arg(name_of(memory))
                     .arg(answer));
    }
}

void check_time(RowLint& lint, MemoryType memory)
{
    const unsigned int rate = lint.profile.attributes[Profile::max_baud];
    const unsigned int word = lint.profile.get_word_size(memory);
    const unsigned int words = (lint.profile.get_row_size(memory) / word) & most_words;
    const double seconds = seconds_of(read_bytes(words * word), rate);
    if (rate != 0 && seconds > answer_seconds) {
        lint.add(Code::RowTooSlow, ATTR_MEMORY_ROW_SIZE.at(memory),
                 QStringLiteral("Reading a row of %1 takes %2 s at %3 baud.")
                     .arg(name_of(memory))
                     .arg(seconds, 0, 'f', 3)
                     .arg(rate));
    }
}

void check_word_addresses(RowLint& lint, MemoryType memory)
{
    const Profile& profile = lint.profile;
    const unsigned int origin = memory == MEMORY_EEPROM ? profile.get_min_address(memory) : 0;
    const unsigned int highest =
        (profile.get_max_address(memory) - 1 - origin) / profile.get_address_divisor(memory);
    if (highest > highest_word_address) {
        lint.add(Code::WordAddressTooLong, ATTR_MEMORY_MAX_ADDR.at(memory),
                 QStringLiteral("The last word of %1 has the address 0x%2.")
                     .arg(name_of(memory), QString::number(highest, 16).toUpper()));
    }
}

void check_wrap(RowLint& lint, Profile::Attr attribute, MemoryType memory)
{
    const quint64 address = quint64{lint.raw(attribute)} * lint.profile.get_address_divisor(memory);
    if (address > std::numeric_limits<unsigned int>::max()) {
        lint.add(Code::AddressesWrap, attribute,
                 QStringLiteral("%1 stands for the byte address 0x%2.")
                     .arg(QLatin1String(meta_attr.valueToKey(attribute)),
                          QString::number(address, 16).toUpper()));
    }
}

void check_begin_of_eeprom(RowLint& lint)
{
    const unsigned int start = lint.profile.get_min_address(MEMORY_EEPROM);
    if (const auto fault = geometry::check_block_start(lint.profile, MEMORY_EEPROM, start)) {
        lint.add(Code::EepromInsideBlock, Profile::eeprom_start_address, *fault);
    }
}

} // namespace

void check_figures_that_cannot_work(RowLint& lint)
{
    check_wrap(lint, Profile::bootloader_start_address, MEMORY_FLASH);
    check_wrap(lint, Profile::bootloader_end_address, MEMORY_FLASH);
    check_wrap(lint, Profile::eeprom_end_address, MEMORY_EEPROM);
    for (const MemoryType memory : memories) {
        const bool is_there = exists(lint, memory);
        if (lint.profile.has_memory_type(memory)) {
            check_geometry(lint, memory);
        }
        if (is_there && lint.is_usable(memory)) {
            check_words(lint, memory);
            check_time(lint, memory);
            check_word_addresses(lint, memory);
        }
    }
    if (lint.is_usable(MEMORY_EEPROM)) {
        check_begin_of_eeprom(lint);
    }
}

} // namespace inspect
