#include "tests/device/AbortTriggers.h"
#include "tests/device/OperationCommands.h"
#include "tests/device/OperationFaults.h"
#include "tests/device/TargetFile.h"

#include <gmock/gmock.h>

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

const char* const stopped_by_user = "sig_error upload_firmware() aborted by user";

/// An operation for which a stop is requested before it begins.
struct Stopped : OperationBench {
    explicit Stopped(const char* device, const Extents& extents = {})
        : OperationBench(device, extents)
    {
        abort = true;
    }
};

} // namespace

TEST(AbortOfAReadWithoutMemory, IsNotSeen)
{
    Stopped bench("no-memory");
    TargetFile target;
    EXPECT_FALSE(bench.line.device.read(target.file, bench.abort, true, true));
    EXPECT_THAT(bench.line.recorder.lines(), IsEmpty());
}

TEST(AbortOfAReadOfAnEmptyRange, IsNotSeen)
{
    Stopped bench("small");
    TargetFile target;
    EXPECT_FALSE(bench.line.device.read_range(target.file, bench.abort, true, true, 0x300, 0x1000));
    EXPECT_THAT(bench.line.recorder.lines(), IsEmpty());
}

TEST(AbortOfAReadOfABadRange, IsNotSeen)
{
    Stopped bench("small");
    TargetFile target;
    EXPECT_FALSE(bench.line.device.read_range(target.file, bench.abort, true, true, 0x101, 0x300));
    EXPECT_THAT(bench.line.recorder.lines(),
                ElementsAre("sig_error Start address 0x00000101 is in flash memory but is not but "
                            "must be a multiple of block size 00000101"));
}

TEST(AbortOfAReadOfExcludedFlash, IsSeen)
{
    Stopped bench("no-eeprom");
    TargetFile target;
    EXPECT_FALSE(bench.line.device.read(target.file, bench.abort, false, false));
    EXPECT_THAT(bench.line.recorder.lines(), ElementsAre(stopped_by_user));
}

TEST(AbortOfARead, IsSeenBeforeARowThatIsSkipped)
{
    OperationBench bench("no-eeprom");
    TargetFile target;
    abort_at_command(bench, 2); // the last one: only encrypted rows follow
    EXPECT_FALSE(bench.line.device.read(target.file, bench.abort, false, true));
    EXPECT_THAT(bench.line.sent(), ElementsAre(read_flash_row(0x180), read_flash_row(0x1C0)));
    EXPECT_THAT(bench.line.recorder.operation(), ElementsAre(stopped_by_user));
    EXPECT_FALSE(target.exists());
}

TEST(AbortOfAWriteOfNothing, IsNotSeen)
{
    Stopped bench("small");
    EXPECT_TRUE(bench.line.device.write(&bench.image, bench.abort, true, true));
    EXPECT_THAT(bench.line.recorder.lines(),
                ElementsAre("sig_upload_progress 0 of 0", "sig_operation_complete"));
}

TEST(AbortOfAWrite, IsSeenBeforeARowThatTheImageDoesNotTouch)
{
    OperationBench bench("small", {{0x100, 4}, {0x1C0, 4}});
    abort_at_command(bench, 1);
    EXPECT_FALSE(bench.line.device.write(&bench.image, bench.abort, true, true));
    EXPECT_THAT(bench.line.recorder.operation(),
                ElementsAre("sig_upload_progress 0 of 192", "sig_upload_progress 64 of 192",
                            stopped_by_user));
}

TEST(AbortOfAWrite, IsSeenAfterARowThatTheImageDoesNotTouch)
{
    OperationBench bench("small", {{0x180, 4}});
    abort_at_progress(bench, 2);
    EXPECT_FALSE(bench.line.device.write(&bench.image, bench.abort, true, true));
    EXPECT_THAT(bench.line.recorder.lines(),
                ElementsAre("sig_upload_progress 0 of 128", "sig_upload_progress 64 of 128",
                            stopped_by_user));
}

TEST(AbortOfAWrite, IsSeenBeforeARowThatIsSkipped)
{
    OperationBench bench("small", {{0x180, 0x80}});
    abort_at_command(bench, 2); // of the range, only encrypted rows follow
    EXPECT_FALSE(
        bench.line.device.write_range(&bench.image, 0x180, 0x300, bench.abort, false, true));
    EXPECT_THAT(bench.line.recorder.operation(),
                ElementsAre("sig_upload_progress 0 of 384", "sig_upload_progress 64 of 384",
                            "sig_upload_progress 128 of 384", stopped_by_user));
}

TEST(AbortOfAVerifyOfNothing, IsNotSeen)
{
    Stopped bench("small", {{0x300, 4}});
    EXPECT_FALSE(bench.verify());
    EXPECT_THAT(bench.line.recorder.lines(), IsEmpty());
}

TEST(AbortOfAVerify, IsSeenBeforeEachTryAtARow)
{
    for (const unsigned int tries : {1U, 2U, 3U}) {
        SCOPED_TRACE(tries);
        OperationBench bench("small", {{0x1000, 1}});
        abort_at_command(bench, tries);
        EXPECT_FALSE(bench.verify());
        EXPECT_EQ(bench.line.sent(), times(tries, read_eeprom(0)));
        EXPECT_THAT(bench.line.recorder.operation(),
                    ElementsAre("sig_error verify_firmware() aborted by user"));
    }
}

TEST(AbortOfAVerify, ComesTooLateForTheLastTry)
{
    OperationBench bench("small", {{0x1000, 1}});
    abort_at_command(bench, 4);
    EXPECT_FALSE(bench.verify());
    EXPECT_EQ(bench.line.sent(), times(4, read_eeprom(0)));
    EXPECT_THAT(bench.line.recorder.operation(),
                ElementsAre(testing::StartsWith("sig_error data mismatch starting at address ")));
}

TEST(AbortOfAVerify, OpensThePortBeforehand)
{
    Stopped bench("small", {{0x100, 4}});
    EXPECT_FALSE(bench.verify());
    EXPECT_TRUE(bench.line.port.is_open());
}

TEST(AbortOfAWriteWithVerifyOfNothing, IsNotSeen)
{
    Stopped bench("small");
    EXPECT_TRUE(bench.write_with_verify(false));
    EXPECT_THAT(bench.line.recorder.lines(),
                ElementsAre("sig_upload_progress 0 of 0", "sig_operation_complete"));
}

TEST(AbortOfAWriteWithVerify, IsSeenBeforeARowThatTheImageDoesNotTouch)
{
    OperationBench bench("small", {{0x100, 4}});
    abort_at_command(bench, 3); // the reading back of the page's only row
    EXPECT_FALSE(bench.write_with_verify(true));
    EXPECT_THAT(bench.line.recorder.operation(),
                ElementsAre("sig_upload_progress 0 of 128", "sig_upload_progress 64 of 128",
                            stopped_by_user));
}

TEST(AbortOfAWriteWithVerify, LeavesThePageErasedWhenItIsAskedForDuringTheErase)
{
    OperationBench bench("small", {{0x100, 0x80}});
    bench.line.simulated.memory().preset(0x100, QByteArray(0x80, '\0'));
    abort_at_command(bench, 2);
    EXPECT_FALSE(bench.write_with_verify(false));
    EXPECT_THAT(bench.line.sent(), ElementsAre(read_flash_row(0x100), erase_page(0x100)));
    EXPECT_EQ(bench.line.simulated.memory().read(0x100, 0x80), QByteArray(0x80, '\xFF'));
}
