#pragma once

#include "profile/MemoryType.h"

#include <QMetaEnum>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>

#include <array>

/// One device of the family as its row of the profile table describes it. Read-only once built;
/// the registry owns every profile and everyone else only points to it.
///
/// All addresses that the queries take and return are byte addresses of the image unless a name
/// says "word".
class Profile : public QObject
{
    Q_OBJECT

public:
    /// The columns of the profile table, in order; each is the index of its value in `attributes`.
    enum Attr : int {
        bootloader_version = 0,
        max_baud,
        device_name, ///< text, kept in `name`; its numeric slot is 0
        flash_end_address_words,
        flash_end_address_bytes,
        bootloader_start_address, ///< given in words, stored in bytes
        bootloader_end_address,   ///< given in words, stored in bytes; the lowest flash address
        flash_page_size,
        flash_row_size,
        flash_word_size, ///< bytes; 0: the device has no flash
        flash_words_per_address,
        flash_block_size,
        flash_filler_word,
        flash_filler_word_size,
        eeprom_start_address, ///< bytes, never scaled
        eeprom_end_address,   ///< given in EEPROM address units, stored in bytes
        eeprom_word_size,     ///< bytes; 0: the device has no EEPROM
        eeprom_words_per_address,
        eeprom_row_size,
        eeprom_block_size,
        eeprom_filler_word,
        eeprom_filler_word_size,
        eeprom_max_size,
        flash_unencrypted_start_address,
        flash_unencrypted_end_address,
        _enum_size
    };
    Q_ENUM(Attr)

    /// Builds a profile from the fields of one table row, field n giving attribute n. Needs at
    /// least `_enum_size` fields. A field that does not convert, or words-per-address of 0 for a
    /// memory that has words, is reported on the debug channel and ends in a thrown QException.
    explicit Profile(QStringList fields);

    /// The attribute whose key name is exactly `key`, or -1.
    static Attr string_to_attr(QString key);
    /// The key name of `a` with spaces for underscores; empty for a value that is not an attribute.
    static QString attr_to_string(Attr a);

    /// A listing for people: one line per attribute, then the address divisors.
    QStringList get_details() const;

    // What the table says about a kind of memory. Sizes are in bytes, limits are byte addresses.
    // MEMORY_OTHER has none of these: every query returns 0 for it.
    unsigned int get_word_size(MemoryType t) const;
    unsigned int get_words_per_address(MemoryType t) const;
    unsigned int get_block_size(MemoryType t) const;
    unsigned int get_row_size(MemoryType t) const;
    unsigned int get_page_size(MemoryType t) const; ///< EEPROM has no pages: 0
    unsigned int get_min_address(MemoryType t) const;
    unsigned int get_max_address(MemoryType t) const; ///< exclusive
    unsigned int get_filler_word(MemoryType t) const;
    unsigned int get_filler_word_size(MemoryType t) const;

    bool has_memory_type(MemoryType t) const;
    /// Bytes of the image per device address step; 0 when the table's figures give none.
    unsigned int get_address_divisor(MemoryType t) const;
    /// Byte order of words sent to the device: 0 least significant byte first, 1 most significant.
    unsigned int get_endianness() const;

    bool is_flash(unsigned int a) const;
    bool is_eeprom(unsigned int a) const;
    /// Flash is tested first: an address in both ranges is flash.
    MemoryType get_memory_type(unsigned int a) const;
    /// True for every address outside user flash and EEPROM, not only for the bootloader proper.
    bool is_bootloader(unsigned int a) const;
    bool is_unencrypted_flash(unsigned int a) const;
    bool is_encrypted_flash(unsigned int a) const;
    /// The word address that bootloader commands carry for byte address `a`. EEPROM word addresses
    /// count from the start of the EEPROM area. 0 where there is no divisor.
    unsigned int byte_to_word_address(unsigned int a) const;

    QString name;
    std::array<unsigned int, _enum_size> attributes{};
    /// Byte addresses at which one region of the device ends and another begins.
    QSet<unsigned int> boundaries;

private:
    void read_fields(const QStringList& fields);
    bool is_divided_by(Attr a) const;
    void scale_addresses();
    QString detail(Attr a) const;
};

/// Key names and values of Profile::Attr. Inline, so that it is initialized before the global
/// objects of any source that includes this header.
inline const QMetaEnum meta_attr = QMetaEnum::fromType<Profile::Attr>();
