#include "tests/device/OperationBench.h"
#include "tests/device/TargetFile.h"
#include "tests/support/Replies.h"
#include "tests/support/RowName.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

#include <functional>

using namespace test;

// The creator of the device object passes in a callback that processes events. Only the entry
// procedure polls; all other operations wait in an event loop and never call it.

namespace
{

int calls = 0;

void count_and_process_events()
{
    ++calls;
    QCoreApplication::processEvents();
}

const bool not_aborted = false;

struct WatchedOperation {
    const char* name;
    std::function<bool(ZarnSerialDevice&)> run;
};

MemoryMap small_image()
{
    return image_of({{0x100, 0x40}, {0x1000, 4}});
}

const WatchedOperation operations[] = {
    {"OpenPort",
     [](ZarnSerialDevice& device) {
         return device.open_port();
     }},
    {"VersionRequest",
     [](ZarnSerialDevice& device) {
         unsigned short version = 0;
         return device.request_bootloader_version(&version);
     }},
    {"GetVersion",
     [](ZarnSerialDevice& device) {
         return device.get_bootloader_version() != 0;
     }},
    {"SetVersion",
     [](ZarnSerialDevice& device) {
         return device.set_bootloader_version(0x0301);
     }},
    {"Reset",
     [](ZarnSerialDevice& device) {
         device.reset();
         return true;
     }},
    {"Wait",
     [](ZarnSerialDevice& device) {
         return device.open_port() && !device.read_until_terminated_or_timed_out(20);
     }},
    {"ReadMemory",
     [](ZarnSerialDevice& device) {
         QByteArray data;
         return device.read_memory(0x100, 0x40, data);
     }},
    {"WriteMemory",
     [](ZarnSerialDevice& device) {
         return device.write_memory(0x100, bytes_at(0x100, 0x40));
     }},
    {"EraseFlash",
     [](ZarnSerialDevice& device) {
         return device.erase_flash(0x100, 1);
     }},
    {"EraseAll",
     [](ZarnSerialDevice& device) {
         return device.erase_all(true, true);
     }},
    {"EraseRange",
     [](ZarnSerialDevice& device) {
         return device.erase_range(true, true, 0x100, 0x180);
     }},
    {"Write",
     [](ZarnSerialDevice& device) {
         const MemoryMap image = small_image();
         return device.write(&image, not_aborted, true, true);
     }},
    {"WriteRange",
     [](ZarnSerialDevice& device) {
         const MemoryMap image = small_image();
         return device.write_range(&image, 0x100, 0x140, not_aborted, true, true);
     }},
    {"Read",
     [](ZarnSerialDevice& device) {
         TargetFile target;
         return device.read(target.file, not_aborted, true, true);
     }},
    {"ReadRange",
     [](ZarnSerialDevice& device) {
         TargetFile target;
         return device.read_range(target.file, not_aborted, true, true, 0x100, 0x140);
     }},
    {"VerifyOfWhatDiffers",
     [](ZarnSerialDevice& device) {
         const MemoryMap image = small_image();
         return !device.verify_firmware(&image, not_aborted, true, true);
     }},
    {"WriteWithVerify",
     [](ZarnSerialDevice& device) {
         const MemoryMap image = small_image();
         return device.write_with_verify(&image, not_aborted, true, true, false);
     }},
};

Host counting_host(bool knows_device)
{
    Host host;
    host.events = count_and_process_events;
    host.knows_device = knows_device;
    return host;
}

class EventCallbackIsNotCalled : public testing::TestWithParam<WatchedOperation>
{
protected:
    EventCallbackIsNotCalled() { calls = 0; }
};

} // namespace

TEST_P(EventCallbackIsNotCalled, ByWhatWaitsInAnEventLoop)
{
    DeviceOnLine line("small", counting_host(true));
    line.simulated.set_reply_filter(first({no_reply()})); // a retry makes it wait
    EXPECT_TRUE(GetParam().run(line.device));
    EXPECT_EQ(calls, 0);
}

INSTANTIATE_TEST_SUITE_P(, EventCallbackIsNotCalled, testing::ValuesIn(operations), row_name);

TEST(EventCallback, IsCalledByTheEntryProcedureAndNotDuringItsVersionRequest)
{
    calls = 0;
    DeviceOnLine line("small", counting_host(false), {sim::Entry::Version});
    int calls_at_the_request = 0;
    QObject::connect(&line.simulated, &sim::SimulatedDevice::command_received, &line.device,
                     [&] { calls_at_the_request = calls; });
    EXPECT_TRUE(line.device.QV_entry_procedure(nullptr));
    EXPECT_GT(calls_at_the_request, 0);
    EXPECT_EQ(calls, calls_at_the_request);
}
