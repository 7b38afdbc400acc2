#include "profile/Profile.h"

#include <QDebug>
#include <QException>

#include <limits>
#include <optional>

namespace
{

struct NumberText {
    QString digits;
    int base;
};

/// Splits the prefix off a field. Only 0b, 0o and 0x count: a bare leading zero is decimal, because
/// people who line up the columns of a table pad numbers with zeros.
NumberText split_prefix(const QString& field)
{
    if (field.size() < 2 || field.at(0) != QLatin1Char('0')) {
        return {field, 10};
    }
    switch (field.at(1).toLower().unicode()) {
    case 'b':
        return {field.mid(2), 2};
    case 'o':
        return {field.mid(2), 8};
    case 'x':
        return {field.mid(2), 16};
    default:
        return {field, 10};
    }
}

std::optional<unsigned int> number_in_field(const QString& field)
{
    const NumberText text = split_prefix(field);
    bool ok = false;
    const qulonglong value = text.digits.toULongLong(&ok, text.base);
    if (!ok || value > std::numeric_limits<unsigned int>::max()) {
        return std::nullopt;
    }
    return static_cast<unsigned int>(value);
}

[[noreturn]] void reject_field(Profile::Attr a, const QString& field, const QString& name)
{
    qDebug() << QStringLiteral("could not parse attr '%1' (value = '%2') for device profile '%3'")
                    .arg(Profile::attr_to_string(a), field, name);
    throw QException();
}

} // namespace

Profile::Profile(QStringList fields)
{
    read_fields(fields);
    scale_addresses();
    boundaries = {
        attributes[flash_end_address_bytes],      attributes[eeprom_start_address],
        attributes[eeprom_end_address],           attributes[bootloader_start_address],
        attributes[bootloader_end_address],       attributes[flash_unencrypted_start_address],
        attributes[flash_unencrypted_end_address]};
}

void Profile::read_fields(const QStringList& fields)
{
    for (int i = 0; i < _enum_size; ++i) {
        const QString field = fields.value(i); // a missing field is empty and so no number
        if (i == device_name) {
            name = field;
            continue;
        }
        const std::optional<unsigned int> number = number_in_field(field);
        if (!number || (*number == 0 && is_divided_by(static_cast<Attr>(i)))) {
            reject_field(static_cast<Attr>(i), field, name);
        }
        attributes.at(static_cast<std::size_t>(i)) = *number;
    }
}

/// A memory's words per address come after its word size in a row.
bool Profile::is_divided_by(Attr a) const
{
    return (a == flash_words_per_address && has_memory_type(MEMORY_FLASH)) ||
           (a == eeprom_words_per_address && has_memory_type(MEMORY_EEPROM));
}

// The start of EEPROM is the one address that the table gives in the image's own bytes although
// its end is given in device units.
void Profile::scale_addresses()
{
    if (has_memory_type(MEMORY_FLASH)) {
        const unsigned int divisor = get_address_divisor(MEMORY_FLASH);
        attributes[bootloader_start_address] *= divisor;
        attributes[bootloader_end_address] *= divisor;
    }
    if (has_memory_type(MEMORY_EEPROM)) {
        attributes[eeprom_end_address] *= get_address_divisor(MEMORY_EEPROM);
    }
}

// QMetaEnum's own look-up takes scoped names and stops at a NUL; a key is compared whole here.
Profile::Attr Profile::string_to_attr(QString key)
{
    const QByteArray latin1 = key.toLatin1();
    for (int i = 0; i < meta_attr.keyCount(); ++i) {
        if (latin1 == meta_attr.key(i)) {
            return static_cast<Attr>(meta_attr.value(i));
        }
    }
    return static_cast<Attr>(-1);
}

QString Profile::attr_to_string(Attr a)
{
    return QString::fromLatin1(meta_attr.valueToKey(a)).replace(QLatin1Char('_'), QLatin1Char(' '));
}

QStringList Profile::get_details() const
{
    QStringList lines;
    for (int i = 0; i < _enum_size; ++i) {
        lines << detail(static_cast<Attr>(i));
    }
    lines << QStringLiteral("\n");
    if (has_memory_type(MEMORY_FLASH)) {
        lines
            << QStringLiteral("flash address divisor = %1").arg(get_address_divisor(MEMORY_FLASH));
    }
    if (has_memory_type(MEMORY_EEPROM)) {
        lines << QStringLiteral("eeprom address divisor = %1")
                     .arg(get_address_divisor(MEMORY_EEPROM));
    }
    return lines;
}

QString Profile::detail(Attr a) const
{
    if (a == device_name) {
        return attr_to_string(a) + QStringLiteral(" = ") + name;
    }
    const unsigned int value = attributes.at(static_cast<std::size_t>(a));
    return attr_to_string(a) + QStringLiteral(" = 0x") + QString::number(value, 16).toUpper();
}
