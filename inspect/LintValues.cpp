// Values that are probably not what was meant, and columns that contradict each other.

#include "inspect/Figures.h"
#include "inspect/RowLint.h"
#include "profile/MemoryAttributes.h"
#include "util/Util.h"

#include <QSerialPortInfo>

#include <limits>

namespace inspect
{

namespace
{

/// The bytes that a filler puts into each word: from its top byte on, and 0 after the fourth.
QByteArray filler_bytes(unsigned int filler, unsigned int word_size)
{
    QByteArray bytes;
    for (unsigned int i = 0; i < word_size; ++i) {
        bytes.append(i < 4 ? static_cast<char>(filler >> (24 - 8 * i)) : '\0');
    }
    return bytes;
}

void check_filler(RowLint& lint, MemoryType memory)
{
    constexpr unsigned int longest_shown = 8;
    const unsigned int word = lint.profile.get_word_size(memory);
    const QByteArray bytes =
        filler_bytes(lint.profile.get_filler_word(memory), qMin(word, longest_shown));
    if (bytes == QByteArray(bytes.size(), '\xFF')) {
        return;
    }
    QString remedy;
    if (word <= 4) {
        const QString erased = QString(static_cast<int>(2 * word), QLatin1Char('F'));
        remedy = QStringLiteral("Write 0x%1, unless the device's erased state is something else.")
                     .arg(erased.leftJustified(8, QLatin1Char('0')));
    }
    lint.add(Code::FillerNotErased, ATTR_FILLER_WORD.at(memory),
             QStringLiteral("%1 fills each word of %2 with %3; erased memory reads FF.")
                 .arg(QLatin1String(meta_attr.valueToKey(ATTR_FILLER_WORD.at(memory))),
                      name_of(memory), QString::fromLatin1(bytes.toHex(' ').toUpper())),
             QString(), remedy);
}

void check_filler_size(RowLint& lint, MemoryType memory)
{
    const unsigned int size = lint.profile.get_filler_word_size(memory);
    const unsigned int word = lint.profile.get_word_size(memory);
    if (size != 0 && size != word) {
        lint.add(Code::FillerSizeDisagrees, ATTR_FILLER_WORD_SIZE.at(memory),
                 QStringLiteral("The filler of %1 has %2, a word %3.")
                     .arg(name_of(memory), count_text(size, "byte"))
                     .arg(word));
    }
}

void check_rate(RowLint& lint)
{
    const unsigned int rate = lint.profile.attributes[Profile::max_baud];
    const auto highest = static_cast<unsigned int>(std::numeric_limits<qint32>::max());
    const QString message = QStringLiteral("max_baud is %1.").arg(rate);
    if (rate == 0 || rate > highest) {
        lint.add(Code::RateUnusable, Profile::max_baud, message);
    } else if (!QSerialPortInfo::standardBaudRates().contains(static_cast<qint32>(rate))) {
        lint.add(Code::RateNotStandard, Profile::max_baud, message);
    }
}

void check_version(RowLint& lint)
{
    const unsigned int version = lint.profile.attributes[Profile::bootloader_version];
    if ((version & 0x80) == 0 || (version & 0xFF00) == 0xFF00) {
        return;
    }
    const auto digits = [](unsigned int value) {
        return Util::uint_to_hex(value, 4);
    };
    lint.add(
        Code::VersionLowByte, Profile::bootloader_version,
        QStringLiteral("A device that reports %1 is seen as %2.")
            .arg(digits(version), digits(version | 0xFF00)),
        QString(),
        QStringLiteral("Begin the row with v%1: to have it found.").arg(digits(version | 0xFF00)));
}

void check_flash_ends(RowLint& lint)
{
    const quint64 words = lint.raw(Profile::flash_end_address_words);
    const quint64 bytes = lint.raw(Profile::flash_end_address_bytes);
    const unsigned int divisor = lint.profile.get_address_divisor(MEMORY_FLASH);
    if (words != 0 && divisor != 0 && words * divisor != bytes) {
        lint.add(Code::FlashEndsDisagree, Profile::flash_end_address_bytes,
                 QStringLiteral("Column 4 stands for the byte address %1, column 5 is %2.")
                     .arg(address_text(words * divisor), address_text(bytes)));
    }
}

void check_eeprom_size(RowLint& lint)
{
    const quint64 size = lint.raw(Profile::eeprom_max_size);
    const quint64 start = lint.profile.get_min_address(MEMORY_EEPROM);
    const quint64 end = lint.profile.get_max_address(MEMORY_EEPROM);
    if (size != 0 && start < end && end - start != size) {
        lint.add(Code::EepromSizesDisagree, Profile::eeprom_end_address,
                 QStringLiteral("EEPROM goes from %1 to %2, which are %3; column 23 is %4.")
                     .arg(address_text(start), address_text(end), size_text(end - start))
                     .arg(size));
    }
}

} // namespace

void check_values(RowLint& lint)
{
    check_rate(lint);
    check_version(lint);
    for (const MemoryType memory : memories) {
        if (lint.profile.has_memory_type(memory)) {
            check_filler(lint, memory);
            check_filler_size(lint, memory);
        }
    }
    if (lint.profile.has_memory_type(MEMORY_FLASH)) {
        check_flash_ends(lint);
    }
    if (lint.profile.has_memory_type(MEMORY_EEPROM)) {
        check_eeprom_size(lint);
    }
}

} // namespace inspect
