// Sizes and limits that do not fit each other.

#include "device/GeometryChecks.h"
#include "inspect/Figures.h"
#include "inspect/RowLint.h"
#include "profile/MemoryAttributes.h"

namespace inspect
{

namespace
{

QString attribute_is(const Profile& profile, Profile::Attr attribute)
{
    return QStringLiteral("%1 is %2")
        .arg(QLatin1String(meta_attr.valueToKey(attribute)))
        .arg(profile.attributes.at(static_cast<std::size_t>(attribute)));
}

/// A size that should be made up of whole smaller ones.
void check_multiple(RowLint& lint, Code code, Profile::Attr larger, Profile::Attr smaller)
{
    const Profile& profile = lint.profile;
    const unsigned int size = profile.attributes.at(static_cast<std::size_t>(larger));
    const unsigned int part = profile.attributes.at(static_cast<std::size_t>(smaller));
    if (size % part != 0) {
        lint.add(code, larger,
                 attribute_is(profile, larger) + QStringLiteral(", ") +
                     attribute_is(profile, smaller) + QLatin1Char('.'));
    }
}

void check_row_against_block(RowLint& lint, MemoryType memory)
{
    const unsigned int row = lint.profile.get_row_size(memory);
    const unsigned int block = lint.profile.get_block_size(memory);
    if (row == block) {
        return;
    }
    QString uploader; // of a larger flash block: the text of the code
    if (memory == MEMORY_EEPROM) {
        uploader = QStringLiteral("Widens each EEPROM read to whole blocks and sends it in rows.");
    } else if (block < row) {
        uploader = QStringLiteral("Reads one row at the start of each block: -r reads bytes twice "
                                  "and fails where the last row reaches past the end of flash; -l "
                                  "saves a file with overlaps, which cannot be loaded.");
    }
    lint.add(Code::RowNotBlock, ATTR_MEMORY_BLOCK_SIZE.at(memory),
             attribute_is(lint.profile, ATTR_MEMORY_ROW_SIZE.at(memory)) + QStringLiteral(", ") +
                 attribute_is(lint.profile, ATTR_MEMORY_BLOCK_SIZE.at(memory)) + QLatin1Char('.'),
             uploader);
}

/// Whether start and end of a memory lie on multiples of a size.
void check_limits(RowLint& lint, Code code, MemoryType memory, unsigned int size,
                  const char* size_name)
{
    const std::array<Profile::Attr, 2> limits = {ATTR_MEMORY_MIN_ADDR.at(memory),
                                                 ATTR_MEMORY_MAX_ADDR.at(memory)};
    for (const Profile::Attr limit : limits) {
        const unsigned int address = lint.profile.attributes.at(static_cast<std::size_t>(limit));
        if (address % size != 0) {
            lint.add(code, limit,
                     QStringLiteral("%1 %2 at %3, which is not a multiple of the %4 of %5.")
                         .arg(name_of(memory),
                              limit == limits.front() ? QStringLiteral("begins")
                                                      : QStringLiteral("ends"),
                              address_text(address), QLatin1String(size_name), size_text(size)));
        }
    }
}

void check_divisor(RowLint& lint, MemoryType memory)
{
    const unsigned int word = lint.profile.get_word_size(memory);
    const unsigned int words = lint.profile.get_words_per_address(memory);
    if (word % words != 0) {
        lint.add(Code::DivisorRounded, ATTR_WORDS_PER_ADDRESS.at(memory),
                 QStringLiteral("%1 bytes and %2 words per address make a divisor of %3.")
                     .arg(word)
                     .arg(words)
                     .arg(word / words));
    }
}

quint64 steps(quint64 bytes, quint64 step)
{
    return (bytes + step - 1) / step;
}

void check_erase_step(RowLint& lint)
{
    const Profile& profile = lint.profile;
    const unsigned int page = profile.get_page_size(MEMORY_FLASH);
    const unsigned int step = geometry::page_step(profile);
    const quint64 bytes =
        profile.get_max_address(MEMORY_FLASH) - profile.get_min_address(MEMORY_FLASH);
    if (step != page) {
        lint.add(Code::DivisorNotOne, Profile::flash_words_per_address,
                 QStringLiteral("The divisor is %1: -e asks for %2, flash has %3 of %4.")
                     .arg(profile.get_address_divisor(MEMORY_FLASH))
                     .arg(count_text(steps(bytes, step), "page"))
                     .arg(steps(bytes, page))
                     .arg(size_text(page)));
    }
}

void check_memory(RowLint& lint, MemoryType memory)
{
    const Profile::Attr row = ATTR_MEMORY_ROW_SIZE.at(memory);
    const Profile::Attr block = ATTR_MEMORY_BLOCK_SIZE.at(memory);
    const Profile::Attr word = ATTR_MEMORY_WORD_SIZE.at(memory);
    check_multiple(lint, Code::RowNotWords, row, word);
    check_multiple(lint, Code::BlockNotWords, block, word);
    check_row_against_block(lint, memory);
    check_divisor(lint, memory);
    check_limits(lint, Code::LimitOffRow, memory, lint.profile.get_row_size(memory), "row");
    const unsigned int block_size = lint.profile.get_block_size(memory);
    if (block_size != lint.profile.get_row_size(memory)) {
        check_limits(lint, Code::LimitOffBlock, memory, block_size, "block");
    }
}

} // namespace

void check_alignment(RowLint& lint)
{
    for (const MemoryType memory : memories) {
        if (lint.is_usable(memory)) {
            check_memory(lint, memory);
        }
    }
    if (lint.is_usable(MEMORY_FLASH)) {
        check_multiple(lint, Code::PageNotRows, Profile::flash_page_size, Profile::flash_row_size);
        check_limits(lint, Code::LimitOffPage, MEMORY_FLASH,
                     lint.profile.get_page_size(MEMORY_FLASH), "page");
        check_erase_step(lint);
    }
}

} // namespace inspect
