#include "device/ZarnSerialDevice.h"
#include "memory/MemoryMap.h"
#include "tests/support/Interface.h"

#include <QFile>
#include <QMetaMethod>
#include <gmock/gmock.h>

#include <string>
#include <type_traits>
#include <vector>

using namespace test;

// The public members that other programs are written against: names, parameters in their order,
// types and constness. What has changed here does not compile.

namespace
{

using Device = ZarnSerialDevice;
using Callback = void (*)();

static_assert(std::is_base_of_v<QObject, Device>);
static_assert(std::has_virtual_destructor_v<Device>);
static_assert(!std::is_copy_constructible_v<Device>);
static_assert(
    std::is_constructible_v<Device, Exactly<QString>, Exactly<Callback>, Exactly<unsigned int>,
                            Exactly<bool>, Exactly<unsigned short>>);

// The line.
static_assert(is_exactly<bool (Device::*)()>(&Device::open_port));
static_assert(is_exactly<bool (Device::*)(QString)>(&Device::error));
static_assert(is_exactly<void (Device::*)()>(&Device::process_events));
static_assert(is_exactly<bool (Device::*)(int)>(&Device::read_until_terminated_or_timed_out));
static_assert(is_exactly<bool (Device::*)(QByteArray, QByteArray&, unsigned short, unsigned char,
                                          int)>(&Device::send_and_receive));

// Frames.
static_assert(is_exactly<bool (*)(char)>(&Device::needs_escaping));
static_assert(is_exactly<bool (*)(QByteArray)>(&Device::is_terminated));
static_assert(is_exactly<bool (*)(QByteArray, QByteArray&)>(&Device::encode));
static_assert(is_exactly<bool (Device::*)(QByteArray, QByteArray&)>(&Device::decode));

// Identification.
static_assert(is_exactly<bool (Device::*)(unsigned short*)>(&Device::request_bootloader_version));
static_assert(is_exactly<bool (Device::*)(unsigned short)>(&Device::set_bootloader_version));
static_assert(is_exactly<unsigned short (Device::*)()>(&Device::get_bootloader_version));
static_assert(is_exactly<bool (Device::*)() const>(&Device::is_half_duplex));
static_assert(is_exactly<unsigned int (Device::*)(Profile::Attr) const>(&Device::get_attr));
static_assert(is_exactly<QString (Device::*)() const>(&Device::get_name));
static_assert(is_exactly<bool (Device::*)(unsigned short*)>(&Device::QV_entry_procedure));
static_assert(is_exactly<void (Device::*)()>(&Device::reset));

// Memory commands.
static_assert(is_exactly<void (Device::*)(unsigned int, QByteArray&, MemoryType) const>(
    &Device::initialize_array));
static_assert(
    is_exactly<bool (Device::*)(unsigned int, unsigned int, QByteArray&)>(&Device::read_memory));
static_assert(is_exactly<bool (Device::*)(unsigned int, QByteArray)>(&Device::write_memory));
static_assert(is_exactly<bool (Device::*)(unsigned int, unsigned char)>(&Device::erase_flash));

// Operations on whole memories.
static_assert(is_exactly<bool (Device::*)(bool, bool)>(&Device::erase_all));
static_assert(
    is_exactly<bool (Device::*)(bool, bool, unsigned int, unsigned int)>(&Device::erase_range));
static_assert(
    is_exactly<bool (Device::*)(const MemoryMap*, const bool&, bool, bool)>(&Device::write));
static_assert(is_exactly<bool (Device::*)(const MemoryMap*, unsigned int, unsigned int, const bool&,
                                          bool, bool)>(&Device::write_range));
static_assert(is_exactly<bool (Device::*)(QFile&, const bool&, bool, bool)>(&Device::read));
static_assert(is_exactly<bool (Device::*)(QFile&, const bool&, bool, bool, unsigned int,
                                          unsigned int)>(&Device::read_range));
static_assert(is_exactly<bool (Device::*)(const MemoryMap*, const bool&, bool, bool)>(
    &Device::verify_firmware));
static_assert(is_exactly<bool (Device::*)(const MemoryMap*, const bool&, bool, bool, bool)>(
    &Device::write_with_verify));

/// "name(type parameter, ...)"
std::string text_of(const QMetaMethod& method)
{
    QByteArray text = method.name() + '(';
    const QList<QByteArray> types = method.parameterTypes();
    const QList<QByteArray> names = method.parameterNames();
    for (int i = 0; i < types.size(); ++i) {
        text += (i == 0 ? "" : ", ") + types.at(i) + ' ' + names.at(i);
    }
    return (text + ')').toStdString();
}

std::vector<std::string> methods(QMetaMethod::MethodType type)
{
    const QMetaObject& meta = Device::staticMetaObject;
    std::vector<std::string> texts;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        if (meta.method(i).methodType() == type) {
            EXPECT_STREQ(meta.method(i).typeName(), "void");
            texts.push_back(text_of(meta.method(i)));
        }
    }
    return texts;
}

} // namespace

TEST(DeviceInterface, HasNineSignalsInThisOrder)
{
    EXPECT_THAT(methods(QMetaMethod::Signal),
                testing::ElementsAre(
                    "sig_error(QString error)", "sig_unencoded_command(QByteArray command)",
                    "sig_encoded_command(QByteArray command)",
                    "sig_encoded_response(QByteArray response)",
                    "sig_decoded_response(QByteArray response)",
                    "sig_verify_progress(uint processed_byte_count, uint total_byte_count)",
                    "sig_upload_progress(uint processed_byte_count, uint total_byte_count)",
                    "sig_download_progress(uint processed_byte_count, uint total_byte_count)",
                    "sig_operation_complete()"));
}

TEST(DeviceInterface, HasOneSlotWhichIsPrivate)
{
    EXPECT_THAT(methods(QMetaMethod::Slot), testing::ElementsAre("rxdata()"));
    const QMetaObject& meta = Device::staticMetaObject;
    EXPECT_EQ(meta.method(meta.indexOfSlot("rxdata()")).access(), QMetaMethod::Private);
}
