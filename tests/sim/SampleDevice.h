#pragma once

#include "profile/Profile.h"
#include "sim/device/FrameCodec.h"

#include <QByteArray>
#include <QStringList>

#include <map>
#include <memory>

namespace test
{

using Changes = std::map<Profile::Attr, const char*>;

/// Table fields of a device with 64 KiB of flash in 2-byte words, of which the bootloader has the
/// first 2 KiB, in rows of 64 and pages of 512 bytes, and 256 bytes of EEPROM at 0x400000 in rows
/// of 16; with some of the fields changed.
inline QStringList sample_fields(const Changes& changes = {})
{
    QStringList fields = QString::fromLatin1("0x0123 57600 SAMPLE 0x8000 0x10000 0x0 0x400 0x200 "
                                             "0x40 2 1 0x20 0xFFFFFFFF 2 0x400000 0x400100 1 1 "
                                             "0x10 0x10 0xFF000000 1 0x100 0x800 0x8000")
                             .split(QLatin1Char(' '));
    for (const auto& [attribute, text] : changes) {
        fields[attribute] = QString::fromLatin1(text);
    }
    return fields;
}

inline std::unique_ptr<const Profile> sample_profile(const Changes& changes = {})
{
    return std::make_unique<const Profile>(sample_fields(changes));
}

/// The rate of the sample device once it runs.
constexpr int full_baud = 57600;

// What a host sends to find a device, and how the sample device answers.
inline const QByteArray probe_byte = QByteArray::fromHex("55");
inline const QByteArray probe_answer = QByteArray::fromHex("51560123");
inline const QByteArray version_frame = sim::make_frame(QByteArray::fromHex("0002"));
inline const QByteArray version_answer = sim::make_frame(QByteArray::fromHex("00020123"));

} // namespace test
