#include "tests/device/OperationBench.h"
#include "tests/device/OperationCommands.h"
#include "tests/device/OperationFaults.h"
#include "tests/support/RowName.h"

#include <gmock/gmock.h>

using namespace test;

namespace
{

std::string dump(const QByteArray& bytes)
{
    return std::to_string(bytes.size()) + ": " + hex(bytes);
}

std::string mismatch(const std::string& address, const QByteArray& device_row,
                     const QByteArray& expected)
{
    return "sig_error data mismatch starting at address 0x" + address + "\ndevice data size " +
           dump(device_row) + "\nexpected data " + dump(expected);
}

struct Mismatch {
    const char* name;
    Extent blob;
    unsigned int wrong_byte;
    Commands matching;  ///< commands for the rows before
    Commands differing; ///< commands for one attempt at the row
    std::vector<unsigned int> processed;
    unsigned int read_address;
    int row_size;
    Extent expected;
};

const Mismatch mismatches[] = {
    {"FirstByte",
     {0x100, 0x80},
     0x100,
     {},
     {read_flash_row(0x100)},
     {},
     0x100,
     0x40,
     {0x100, 0x40}},
    {"LastByteOfARow",
     {0x100, 0x80},
     0x13F,
     {},
     {read_flash_row(0x100)},
     {},
     0x100,
     0x40,
     {0x100, 0x40}},
    {"SecondRow",
     {0x100, 0x80},
     0x140,
     {read_flash_row(0x100)},
     {read_flash_row(0x140)},
     {64},
     0x140,
     0x40,
     {0x140, 0x40}},
    {"LastByteOfTheImage",
     {0x100, 0x4A},
     0x149,
     {read_flash_row(0x100)},
     {read_flash_row(0x140)},
     {64},
     0x140,
     0x40,
     {0x140, 10}},
    {"BesideTheRows",
     {0x110, 0x20},
     0x12F,
     {},
     {read_flash_row(0x100), read_flash_row(0x140)},
     {},
     0x110,
     0x40,
     {0x110, 0x20}},
    {"Eeprom",
     {0x1000, 20},
     0x1013,
     {read_eeprom(0)},
     {read_eeprom(0x10)},
     {16},
     0x1010,
     0x10,
     {0x1010, 4}},
    // The last row of a memory is read so that it ends with the memory.
    {"LastRowOfFlash",
     {0x2A0, 0x60},
     0x2FF,
     {read_flash_row(0x280), read_flash_row(0x2C0)},
     {read_flash_row(0x2C0)},
     {64},
     0x2C0,
     0x40,
     {0x2E0, 0x20}},
    {"FirstComparedByteOfTheLastRow",
     {0x1025, 11},
     0x1025,
     {},
     {read_eeprom(0x20)},
     {},
     0x1020,
     0x10,
     {0x1025, 11}},
};

class VerifyMismatches : public testing::TestWithParam<Mismatch>
{
};

} // namespace

TEST_P(VerifyMismatches, AreReportedAfterFourTries)
{
    const Mismatch& row = GetParam();
    OperationBench bench("small", {row.blob});
    bench.install_image();
    sim::DeviceMemory& memory = bench.line.simulated.memory();
    const char right = memory.read(row.wrong_byte, 1).at(0);
    memory.preset(row.wrong_byte, QByteArray(1, static_cast<char>(right ^ 0x01)));

    EXPECT_FALSE(bench.verify());
    Commands commands = row.matching;
    for (int i = 0; i < 4; ++i) {
        commands = joined(commands, row.differing);
    }
    EXPECT_EQ(bench.line.sent(), commands);
    const std::string address =
        QStringLiteral("%1").arg(row.read_address, 8, 16, QLatin1Char('0')).toUpper().toStdString();
    EXPECT_EQ(bench.line.recorder.operation(),
              then(verify_progress(row.processed, static_cast<unsigned int>(row.blob.size)),
                   mismatch(address,
                            memory.read(row.read_address, static_cast<unsigned int>(row.row_size)),
                            bytes_at(row.expected.address, row.expected.size))));
}

INSTANTIATE_TEST_SUITE_P(, VerifyMismatches, testing::ValuesIn(mismatches), row_name);

namespace
{

/// A device and an image that differ, and the report.
struct Report {
    const char* name;
    unsigned int image_address;
    unsigned int device_address;
    QByteArray image;
    QByteArray device;
    SignalRecorder::Lines signals_seen;
};

const Report reports[] = {
    {"ToTheByte",
     0x1000,
     0x1000,
     bytes("01 02 FE"),
     bytes("01 02 0A"),
     {"sig_error data mismatch starting at address 0x00001000\n"
      "device data size 16: 01 02 0A FF FF FF FF FF FF FF FF FF FF FF FF FF\n"
      "expected data 3: 01 02 FE"}},
    {"OfTheWholeRowThatWasReadFurtherDown",
     0x102E,
     0x1020,
     bytes("55 04"),
     counting(16),
     {"sig_error data mismatch starting at address 0x00001020\n"
      "device data size 16: 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F\n"
      "expected data 2: 55 04"}},
    {"OfBytesThatAreThereButLater",
     0x1000,
     0x1000,
     bytes("01 02 03"),
     bytes("00 01 02 03"),
     {"sig_error data mismatch starting at address 0x00001000\n"
      "device data size 16: 00 01 02 03 FF FF FF FF FF FF FF FF FF FF FF FF\n"
      "expected data 3: 01 02 03"}},
    {"OfBytesThatAreThereButEarlier",
     0x102D,
     0x102C,
     bytes("01 02 03"),
     bytes("01 02 03"),
     {"sig_error data mismatch starting at address 0x00001020\n"
      "device data size 16: FF FF FF FF FF FF FF FF FF FF FF FF 01 02 03 FF\n"
      "expected data 3: 01 02 03"}},
    {"OfARowThatLeavesTheMemory",
     0x102C,
     0x102C,
     counting(6),
     counting(4),
     {"sig_error data mismatch starting at address 0x00001020\n"
      "device data size 16: FF FF FF FF FF FF FF FF FF FF FF FF 00 01 02 03\n"
      "expected data 6: 00 01 02 03 04 05"}},
    {"OfARowBeyondTheMemory",
     0x1020,
     0x1020,
     counting(18),
     counting(16),
     {"sig_verify_progress 16 of 18",
      "sig_error data mismatch starting at address 0x00001020\n"
      "device data size 16: 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F\n"
      "expected data 2: 10 11"}},
};

class VerifyMismatchReports : public testing::TestWithParam<Report>
{
};

} // namespace

TEST_P(VerifyMismatchReports, ShowBothRows)
{
    const Report& row = GetParam();
    OperationBench bench("small");
    bench.image.write(row.image_address, row.image);
    bench.line.simulated.memory().preset(row.device_address, row.device);
    EXPECT_FALSE(bench.verify());
    EXPECT_EQ(bench.line.recorder.operation(), row.signals_seen);
}

INSTANTIATE_TEST_SUITE_P(, VerifyMismatchReports, testing::ValuesIn(reports), row_name);

namespace
{

struct Retry {
    const char* name;
    std::set<unsigned int> damaged;
    std::size_t first_row_tries;
    std::size_t second_row_tries;
};

const Retry retries[] = {
    {"OnceInTheFirstRow", {0}, 2, 1},
    {"TwiceInTheFirstRow", {0, 1}, 3, 1},
    {"ThreeTimesInTheFirstRow", {0, 1, 2}, 4, 1},
    {"ThreeTimesInTheSecondRow", {1, 2, 3}, 1, 4},
    {"TwiceInEachRow", {0, 1, 3, 4}, 3, 3},
    {"ThreeTimesInEachRow", {0, 1, 2, 4, 5, 6}, 4, 4},
};

class VerifyRetries : public testing::TestWithParam<Retry>
{
};

} // namespace

TEST_P(VerifyRetries, ReplaceRowsThatWereReadWrong)
{
    const Retry& row = GetParam();
    OperationBench bench("small", {{0x100, 0x80}});
    bench.install_image();
    bench.line.simulated.set_reply_filter(damaging(row.damaged));
    EXPECT_TRUE(bench.verify());
    EXPECT_EQ(bench.line.sent(), joined(times(row.first_row_tries, read_flash_row(0x100)),
                                        times(row.second_row_tries, read_flash_row(0x140))));
    EXPECT_EQ(bench.line.recorder.operation(), then_complete(verify_progress({64, 128}, 128)));
}

INSTANTIATE_TEST_SUITE_P(, VerifyRetries, testing::ValuesIn(retries), row_name);

TEST(VerifyFails, AtTheFourthWrongReadWhichItShows)
{
    OperationBench bench("small", {{0x1000, 1}});
    bench.install_image();
    bench.line.simulated.set_reply_filter([](const sim::Command& command, const QByteArray&) {
        return frame_of(command.payload +
                        QByteArray(16, static_cast<char>(0xA0 + command.sequence)));
    });
    EXPECT_FALSE(bench.verify());
    EXPECT_EQ(bench.line.sent(), times(4, read_eeprom(0)));
    EXPECT_EQ(
        bench.line.recorder.operation(),
        SignalRecorder::Lines{mismatch("00001000", QByteArray(16, '\xA3'), bytes_at(0x1000, 1))});
}

TEST(VerifyFails, AtOnceAtARowThatCannotBeRead)
{
    OperationBench bench("small", {{0x100, 0x80}});
    bench.install_image();
    bench.line.simulated.set_reply_filter(unreadable_from(1));
    EXPECT_FALSE(bench.verify());
    EXPECT_EQ(bench.line.sent(),
              joined({read_flash_row(0x100)}, times(read_attempts, read_flash_row(0x140))));
    EXPECT_EQ(bench.line.recorder.operation(), then(verify_progress({64}, 128), gave_up_reading()));
}

TEST(VerifyFails, AtOnceAtARowThatCannotBeReadAgain)
{
    OperationBench bench("small", {{0x100, 0x80}});
    bench.line.simulated.set_reply_filter(unreadable_from(2));
    EXPECT_FALSE(bench.verify());
    EXPECT_EQ(bench.line.sent(), times(2 + read_attempts, read_flash_row(0x100)));
    EXPECT_EQ(bench.line.recorder.operation(), SignalRecorder::Lines{gave_up_reading()});
}
