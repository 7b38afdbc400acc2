#include "tests/support/Bytes.h"
#include "tests/support/DeviceOnLine.h"
#include "tests/support/Image.h"
#include "tests/support/ProfileTable.h"
#include "tests/support/Progress.h"
#include "tests/support/Replies.h"

#include <gmock/gmock.h>

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

// The sample writes flash from 0x800 to 0x4000 in rows of 64 bytes, EEPROM from 0x8000 to 0x8100 in
// rows of 16. Since EEPROM lies above flash, the rows are walked from 0x800 on.

namespace
{

class Write : public testing::Test
{
protected:
    bool write(const MemoryMap& map, bool encrypted = true, bool unencrypted = true)
    {
        return line.device.write(&map, abort_requested, encrypted, unencrypted);
    }

    DeviceOnLine line{"sample"};
    bool abort_requested = false;
};

} // namespace

TEST_F(Write, PassesOverRowsBeforeTheImage)
{
    EXPECT_TRUE(write(image({{0x880, counting(64)}})));
    EXPECT_THAT(line.sent(), ElementsAre(hex(bytes("02 01 40 04 00") + counting(64))));
    EXPECT_EQ(line.recorder.operation(), completed_upload({0, 64, 128, 192}, 192));
}

TEST_F(Write, SendsRowsInOrderAndNoneWithoutImageBytes)
{
    EXPECT_TRUE(write(image({{0x880, counting(64, 1)}, {0x800, counting(64)}})));
    EXPECT_THAT(line.sent(), ElementsAre(hex(bytes("02 01 00 04 00") + counting(64)),
                                         hex(bytes("02 01 40 04 00") + counting(64, 1))));
    EXPECT_EQ(line.recorder.operation(), completed_upload({0, 64, 128, 192}, 192));
}

TEST_F(Write, FillsRowsUpWithTheFiller)
{
    EXPECT_TRUE(write(image({{0x803, bytes("01 02 03")}, {0x83F, bytes("04")}})));
    const QByteArray row = bytes("AB CD AB 01 02 03") + bytes("AB CD").repeated(28) + "\xAB\x04";
    EXPECT_THAT(line.sent(), ElementsAre(hex(bytes("02 01 00 04 00") + row)));
}

TEST_F(Write, TakesTheLaterOfTwoPiecesAtOnePlace)
{
    EXPECT_TRUE(write(image({{0x800, QByteArray(64, '\x11')}, {0x810, bytes("22")}})));
    QByteArray row(64, '\x11');
    row[0x10] = '\x22';
    EXPECT_THAT(line.sent(), ElementsAre(hex(bytes("02 01 00 04 00") + row)));
}

TEST_F(Write, VisitsAPartialLastRowThatTheTotalDoesNotCount)
{
    EXPECT_TRUE(write(image({{0x800, counting(80)}})));
    EXPECT_EQ(line.sent().size(), 2U);
    EXPECT_EQ(line.recorder.operation(), completed_upload({0, 64, 128}, 64));
}

TEST_F(Write, OfAnEmptyImageOpensThePortAndCompletes)
{
    EXPECT_TRUE(write(image({})));
    EXPECT_TRUE(line.port.is_open());
    EXPECT_THAT(line.sent(), IsEmpty());
    EXPECT_EQ(line.recorder.lines(), completed_upload({0}, 0));
}

TEST_F(Write, IgnoresWhatLiesOutsideFlashAndEeprom)
{
    EXPECT_TRUE(write(image({{0x100, counting(16)}, {0x5000, counting(16)}, {0x8100, "x"}})));
    EXPECT_THAT(line.sent(), IsEmpty());
    EXPECT_EQ(line.recorder.lines(), completed_upload({0}, 0));
}

TEST_F(Write, OfEepromOnlyWritesNoFlash)
{
    EXPECT_TRUE(write(image({{0x8010, counting(16)}})));
    EXPECT_THAT(line.sent(), ElementsAre(hex(bytes("05 10 10 00 00") + counting(16))));
    EXPECT_EQ(line.recorder.operation(), completed_upload({0, 16}, 16));
}

TEST_F(Write, SendsEveryEepromRowBetweenItsFirstAndItsLast)
{
    EXPECT_TRUE(
        write(image({{0x8004, bytes("01 02")}, {0x8000, bytes("00")}, {0x8021, bytes("03")}})));
    const QByteArray first = bytes("00 5A 5A 5A 01 02") + QByteArray(10, '\x5A');
    const QByteArray last = bytes("5A 03") + QByteArray(14, '\x5A');
    EXPECT_THAT(line.sent(), ElementsAre(hex(bytes("05 10 00 00 00") + first),
                                         hex(bytes("05 10 10 00 00") + QByteArray(16, '\x5A')),
                                         hex(bytes("05 10 20 00 00") + last)));
    // Two whole rows and a byte of a third.
    EXPECT_EQ(line.recorder.operation(), completed_upload({0, 16, 32, 48}, 32));
}

TEST_F(Write, OfEepromMustBeginOnARow)
{
    EXPECT_FALSE(write(image({{0x8008, counting(16)}})));
    EXPECT_THAT(line.recorder.operation(),
                ElementsAre("sig_upload_progress 0 of 16",
                            "sig_error address must be a multiple of row_size (16)",
                            "sig_error unable to write EEPROM row at address 0x00008008"));
    EXPECT_THAT(line.sent(), IsEmpty());
}

TEST_F(Write, DoesFlashBeforeEeprom)
{
    EXPECT_TRUE(write(image({{0x8000, counting(16)}, {0x800, counting(64)}})));
    EXPECT_THAT(line.sent(), ElementsAre(hex(bytes("02 01 00 04 00") + counting(64)),
                                         hex(bytes("05 10 00 00 00") + counting(16))));
    EXPECT_EQ(line.recorder.operation(), completed_upload({0, 64, 80}, 80));
    EXPECT_EQ(line.simulated.memory().read(0x800, 64), counting(64));
    EXPECT_EQ(line.simulated.memory().read(0x8000, 16), counting(16));
}

TEST_F(Write, LeavesOutTheEncryptedArea)
{
    // The area from 0x1000 on is not encrypted, that below and the one from 0x2000 on are.
    EXPECT_TRUE(
        write(image({{0x900, counting(64)}, {0x1000, counting(64)}, {0x2000, "x"}}), false, true));
    EXPECT_THAT(line.sent(), ElementsAre(hex(bytes("02 01 00 08 00") + counting(64))));
    EXPECT_EQ(line.recorder.operation(), completed_upload({0, 64}, 0x1040 - 0x800));
}

TEST_F(Write, LeavesOutTheUnencryptedArea)
{
    EXPECT_TRUE(write(image({{0x800, counting(64)}, {0x1000, "x"}, {0x2000, counting(64, 9)}}),
                      true, false));
    EXPECT_THAT(line.sent(), ElementsAre(hex(bytes("02 01 00 04 00") + counting(64)),
                                         hex(bytes("02 01 00 10 00") + counting(64, 9))));
    // 0x800 to 0x1000 and the one row at 0x2000.
    EXPECT_EQ(line.recorder.operation().back(), "sig_operation_complete");
    EXPECT_EQ(line.recorder.operation().size(), 1U + 32 + 1 + 1);
    EXPECT_EQ(*(line.recorder.operation().end() - 2), "sig_upload_progress 2112 of 6208");
}

TEST_F(Write, LooksOnlyAtTheBeginningOfABlobToLeaveItOut)
{
    // One blob that begins in the unencrypted area and goes on in the encrypted one.
    EXPECT_TRUE(write(image({{0x1FC0, counting(128)}}, 128), false, true));
    EXPECT_THAT(line.sent(), ElementsAre(hex(bytes("02 01 E0 0F 00") + counting(64))));
    EXPECT_EQ(line.recorder.operation().front(), "sig_upload_progress 0 of 6208");
}

TEST_F(Write, WithoutAnyFlashAreaDoesEepromOnly)
{
    EXPECT_TRUE(
        write(image({{0x800, counting(64)}, {0x1000, counting(64)}, {0x8000, counting(16)}}), false,
              false));
    EXPECT_THAT(line.sent(), ElementsAre(hex(bytes("05 10 00 00 00") + counting(16))));
    EXPECT_EQ(line.recorder.operation(), completed_upload({0, 16}, 16));
}

TEST_F(Write, EndsWithEeprom)
{
    // One blob that goes on beyond the end.
    EXPECT_TRUE(write(image({{0x80F0, counting(32)}}, 32)));
    EXPECT_THAT(line.sent(), ElementsAre(hex(bytes("05 10 F0 00 00") + counting(16))));
    EXPECT_EQ(line.recorder.operation(), completed_upload({0, 16}, 16));
}

TEST_F(Write, EndsAtTheFirstFlashRowThatFails)
{
    line.simulated.set_reply_filter(to_command(1, frame_of("03")));
    EXPECT_FALSE(write(image({{0x800, counting(192)}, {0x8000, counting(16)}})));
    EXPECT_EQ(line.sent().size(), 2U);
    EXPECT_THAT(line.recorder.operation(),
                ElementsAre("sig_upload_progress 0 of 208", "sig_upload_progress 64 of 208",
                            "sig_error unable to write flash row at address 0x00000840"));
}

TEST_F(Write, EndsAtTheFirstEepromRowThatFails)
{
    line.simulated.set_reply_filter(to_command(1, frame_of("02")));
    EXPECT_FALSE(write(image({{0x8000, counting(48)}})));
    EXPECT_EQ(line.sent().size(), 2U);
    EXPECT_THAT(line.recorder.operation(),
                ElementsAre("sig_upload_progress 0 of 48", "sig_upload_progress 16 of 48",
                            "sig_error unable to write EEPROM row at address 0x00008010"));
}

TEST_F(Write, ReportsWhyADeviceWasGivenUpAndWhichRowWasNotWritten)
{
    line.simulated.set_reply_filter(always(frame_of("02 02")));
    EXPECT_FALSE(write(image({{0x800, counting(64)}})));
    const auto lines = line.recorder.operation();
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[1].find("sig_error giving up after having made 40 attempts"), 0U);
    EXPECT_EQ(lines[2], "sig_error unable to write flash row at address 0x00000800");
}

TEST(WriteWithoutPort, FailsAfterTheTotal)
{
    ZarnSerialDevice device(QStringLiteral("/dev/no-such-port"), nullptr, 9600, false,
                            version_named("sample"));
    const SignalRecorder recorder(device);
    const MemoryMap map = image({{0x800, counting(64)}});
    const bool abort_requested = false;
    EXPECT_FALSE(device.write(&map, abort_requested, true, true));
    ASSERT_EQ(recorder.lines().size(), 2U);
    EXPECT_EQ(recorder.lines().front(), "sig_upload_progress 0 of 64");
    EXPECT_EQ(recorder.lines().back().find("sig_error cannot open port no-such-port ("), 0U);
}
