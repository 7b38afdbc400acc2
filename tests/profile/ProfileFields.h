#pragma once

#include "profile/Profile.h"

#include <QStringList>

namespace test
{

/// The fields of a device with 2-byte flash words and with EEPROM far above its flash.
inline QStringList example_fields()
{
    return QStringLiteral("0x0102|115200|DEV-A128|0x10000|0x20000|0x0|0x400|0x400|0x100|2|1|0x100|"
                          "0xFFFF|2|0xF00000|0xF00400|1|1|0x20|0x20|0xFF|1|0x400|0x800|0x10000")
        .split(QLatin1Char('|'));
}

/// The fields of a device without EEPROM.
inline QStringList fields_without_eeprom()
{
    return QStringLiteral("0x0203|57600|DEV-B64|0x8000|0x10000|0x0|0x200|0x200|0x80|2|1|0x80|"
                          "0xFFFF|2|0x0|0x0|0|0|0|0|0|0|0|0x400|0x10000")
        .split(QLatin1Char('|'));
}

/// `fields` with the one of attribute `a` replaced.
inline QStringList with_field(QStringList fields, Profile::Attr a, const char* text)
{
    fields[a] = QString::fromUtf8(text);
    return fields;
}

} // namespace test
