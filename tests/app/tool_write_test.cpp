#include "tests/app/ToolTest.h"
#include "tests/support/Bytes.h"

using namespace test;

namespace
{

class ToolWrite : public ToolTest
{
};

/// The payload of a command, in hexadecimal.
std::string command(const char* header, const QByteArray& data)
{
    return header + data.toHex().toStdString();
}

} // namespace

TEST_F(ToolWrite, ProgramsFlashAndEeprom)
{
    give_file("twin_two_rows_and_eeprom.hex");
    sim::SimulatedDevice device(twin());
    EXPECT_EQ(run(device, "-B 0102 -w twin_two_rows_and_eeprom.hex"),
              exited(0, QByteArray("Version set to 0x0102 successfully!"
                                   "\rProgress 0%\rProgress 28%\rProgress 57%\rProgress 85%"
                                   "\rProgress 100%"
                                   "Now writingMemory written!\n") +
                            success));
    EXPECT_EQ(commands_of(device),
              (std::vector<std::string>{command("0201500000", counting(32)),
                                        command("0201600000", counting(32, 0x40)),
                                        command("0510100000", counting(16, 0xE0))}));
    EXPECT_EQ(device.memory().read(0xA0, 32), counting(32));
    EXPECT_EQ(device.memory().read(0xC0, 32), counting(32, 0x40));
    EXPECT_EQ(device.memory().read(0x1010, 16), counting(16, 0xE0));
}

TEST_F(ToolWrite, LeavesTheImageFileAsItIs)
{
    give_file("twin_part_of_a_row.hex");
    sim::SimulatedDevice device(twin());
    run(device, "-B 0102 -w twin_part_of_a_row.hex");
    EXPECT_EQ(m_tool.file(QStringLiteral("twin_part_of_a_row.hex")),
              test_data("twin_part_of_a_row.hex"));
}

TEST_F(ToolWrite, MayRunBeyondItsTotalAtARowBegun)
{
    give_file("twin_part_of_a_row.hex");
    sim::SimulatedDevice device(twin());
    EXPECT_EQ(run(device, "-B 0102 -w twin_part_of_a_row.hex"),
              exited(0, QByteArray("Version set to 0x0102 successfully!"
                                   "\rProgress 0%\rProgress 100%\rProgress 200%"
                                   "Now writingMemory written!\n") +
                            success));
    EXPECT_EQ(commands_of(device), std::vector<std::string>{command(
                                       "0201500000", counting(10, 0x10) + QByteArray(22, '\xFF'))});
}

TEST_F(ToolWrite, FillsTheRestOfARowWithTheFillerWord)
{
    give_file("solo_part_of_a_row.hex");
    sim::SimulatedDevice device(solo());
    EXPECT_EQ(run(device, "-B 0203 -w solo_part_of_a_row.hex"),
              exited(0, QByteArray("Version set to 0x0203 successfully!"
                                   "\rProgress 0%\rProgress 0%"
                                   "Now writingMemory written!\n") +
                            success));
    EXPECT_EQ(commands_of(device),
              std::vector<std::string>{command(
                  "0201600000", counting(5, 0x10) + "\x5A" + QByteArray("\xA5\x5A").repeated(13))});
}

// The image runs across the border of the areas, where the loader has to cut it.

TEST_F(ToolWrite, LeavesOutTheEncryptedArea)
{
    give_file("twin_encrypted_and_unencrypted.hex");
    sim::SimulatedDevice device(twin());
    EXPECT_EQ(run(device, "-B 0102 -xe -w twin_encrypted_and_unencrypted.hex"),
              exited(0, QByteArray("Version set to 0x0102 successfully!"
                                   "\rProgress 0%\rProgress 20%"
                                   "Now writingMemory written!\n") +
                            success));
    EXPECT_EQ(commands_of(device),
              std::vector<std::string>{command("0201800000", counting(32, 0x20))});
}

TEST_F(ToolWrite, LeavesOutTheUnencryptedArea)
{
    give_file("twin_encrypted_and_unencrypted.hex");
    sim::SimulatedDevice device(twin());
    EXPECT_EQ(run(device, "-B 0102 -xu -w twin_encrypted_and_unencrypted.hex"),
              exited(0, QByteArray("Version set to 0x0102 successfully!"
                                   "\rProgress 0%\rProgress 25%\rProgress 50%\rProgress 75%"
                                   "\rProgress 100%"
                                   "Now writingMemory written!\n") +
                            success));
    EXPECT_EQ(commands_of(device), std::vector<std::string>{command("0201700000", counting(32))});
}

TEST_F(ToolWrite, OfAMissingFileWritesNothing)
{
    sim::SimulatedDevice device(twin());
    EXPECT_EQ(run(device, "-B 0102 -w missing.hex"),
              exited(0, QByteArray("Version set to 0x0102 successfully!\rProgress 0%"
                                   "Now writingMemory written!\n") +
                            success));
    EXPECT_EQ(heard_by(device), "");
    EXPECT_EQ(m_tool.file(QStringLiteral("missing.hex")), "");
}

TEST_F(ToolWrite, OfABadFileFailsAfterTheErase)
{
    give_file("bad_checksum.hex");
    sim::SimulatedDevice device(twin());
    const ToolResult result = run(device, "-B 0102 -e -w bad_checksum.hex -R");
    EXPECT_EQ(result, exited(1, "Version set to 0x0102 successfully!Erased all flash!\n"
                                "Could not process firmware file bad_checksum.hex as intel hex 32 "
                                "format during write, aborting..."));
    EXPECT_EQ(commands_of(device), std::vector<std::string>{"0307400000"});
    EXPECT_TRUE(result.err.contains("MemoryMap::read_record(): checksum mismatch"));
}

TEST_F(ToolWrite, NamesABadFileAsItWasTyped)
{
    m_tool.put_file(QStringLiteral("%1 ü.hex"), ":zz");
    sim::SimulatedDevice device(twin());
    EXPECT_EQ(m_tool.run({QStringLiteral("-s"), device.port_path(), QStringLiteral("-B"),
                          QStringLiteral("0102"), QStringLiteral("-W"), QStringLiteral("0"),
                          QStringLiteral("1"), QStringLiteral("%1 ü.hex")}),
              exited(1, "Version set to 0x0102 successfully!"
                        "Could not process firmware file %1 ü.hex as intel hex 32 format during "
                        "write, aborting..."));
}

TEST_F(ToolWrite, FailsMidwayWhenTheDeviceRefusesARow)
{
    give_file("twin_two_rows_and_eeprom.hex");
    sim::SimulatedDevice device(twin());
    script_replies(device, {{{frame("02")}}, {{frame("03")}}});
    EXPECT_EQ(run(device, "-B 0102 -w twin_two_rows_and_eeprom.hex -R"),
              exited(1, "Version set to 0x0102 successfully!"
                        "\rProgress 0%\rProgress 28%\rProgress 57%"
                        "unable to write flash row at address 0x000000C0\n"
                        "Now writingFailed to write memory, aborting...\n"));
    EXPECT_EQ(commands_of(device),
              (std::vector<std::string>{command("0201500000", counting(32)),
                                        command("0201600000", counting(32, 0x40))}));
}

TEST_F(ToolWrite, FailsWhenTheDeviceRefusesAnEepromRow)
{
    give_file("twin_two_rows_and_eeprom.hex");
    sim::SimulatedDevice device(twin());
    script_replies(device, {{{frame("02")}}, {{frame("02")}}, {{frame("02")}}});
    EXPECT_EQ(run(device, "-B 0102 -w twin_two_rows_and_eeprom.hex"),
              exited(1, "Version set to 0x0102 successfully!"
                        "\rProgress 0%\rProgress 28%\rProgress 57%\rProgress 85%"
                        "unable to write EEPROM row at address 0x00001010\n"
                        "Now writingFailed to write memory, aborting...\n"));
}

TEST_F(ToolWrite, MustBeginOnARowWithoutEepromAboveIt)
{
    give_file("solo_off_row.hex");
    sim::SimulatedDevice device(solo());
    EXPECT_EQ(run(device, "-B 0203 -w solo_off_row.hex"),
              exited(1, "Version set to 0x0203 successfully!\rProgress 0%"
                        "address must be a multiple of row_size (32)\n"
                        "unable to write flash row at address 0x00000068\n"
                        "Now writingFailed to write memory, aborting...\n"));
    EXPECT_EQ(heard_by(device), "");
}

TEST_F(ToolWrite, OfARangeTakesItsAddressesAsBytes)
{
    give_file("twin_two_rows_and_eeprom.hex");
    sim::SimulatedDevice device(twin());
    EXPECT_EQ(run(device, "-B 0102 -W 0xC0 256 twin_two_rows_and_eeprom.hex"),
              exited(0, QByteArray("Version set to 0x0102 successfully!"
                                   "\rProgress 0%\rProgress 50%\rProgress 100%"
                                   "Now writingMemory range written!\n") +
                            success));
    EXPECT_EQ(commands_of(device),
              std::vector<std::string>{command("0201600000", counting(32, 0x40))});
}

TEST_F(ToolWrite, OfARangeMustBeAlignedInFlash)
{
    give_file("twin_two_rows_and_eeprom.hex");
    sim::SimulatedDevice device(twin());
    EXPECT_EQ(run(device, "-B 0102 -W 0xA1 0xC0 twin_two_rows_and_eeprom.hex"),
              exited(1, "Version set to 0x0102 successfully!"
                        "Start address 0x000000A1 is in flash memory but is not but must be a "
                        "multiple of block size 000000A1\n"
                        "Now writingFailed to write memory range, aborting...\n"));
    EXPECT_EQ(heard_by(device), "");
}

TEST_F(ToolWrite, OfARangeMustLieInsideTheMemories)
{
    give_file("twin_two_rows_and_eeprom.hex");
    sim::SimulatedDevice device(twin());
    EXPECT_EQ(run(device, "-B 0102 -W 0xA0 0x1041 twin_two_rows_and_eeprom.hex"),
              exited(1, "Version set to 0x0102 successfully!"
                        "Cannot write to address range 0x000000A0 0x000000A0 outside"
                        "                 of flash addresses 0x000000A0 0x000000A0 or eeprom "
                        "addresses 0x000000A0 0x000000A0\n"
                        "Now writingFailed to write memory range, aborting...\n"));
    EXPECT_EQ(heard_by(device), "");
}

TEST_F(ToolWrite, RunsBetweenEraseAndReset)
{
    give_file("solo_two_rows.hex");
    sim::SimulatedDevice device(solo());
    device.memory().preset(0x40, QByteArray(0x1C0, '\x00'));
    EXPECT_EQ(run(device, "-R -w solo_two_rows.hex -e -B 0203"),
              exited(0, QByteArray("Version set to 0x0203 successfully!"
                                   "\rProgress 0%\rProgress 50%\rProgress 100%"
                                   "Erased all flash!\n"
                                   "Now writingMemory written!\n"
                                   "Resetting device\n") +
                            success));
    EXPECT_EQ(heard_by(device),
              small_digits(frame("0307400000") + frame("0201600000", counting(32)) +
                           frame("0201800000", counting(32, 0x40)) + frame("0000")));
    EXPECT_EQ(device.memory().read(0x40, 0x80), QByteArray(0x20, '\xFF') + counting(32) +
                                                    counting(32, 0x40) + QByteArray(0x20, '\xFF'));
}

TEST_F(ToolWrite, WithEntryProcedureShowsTheVersionAfterTheProgress)
{
    give_file("solo_two_rows.hex");
    sim::SimulatedDevice device(solo());
    EXPECT_EQ(run(device, "-w solo_two_rows.hex -R"),
              exited(0, QByteArray("\rProgress 0%\rProgress 50%\rProgress 100%"
                                   "Retrieved version number during QV entry procedure: 0x0203\n"
                                   "Now writingMemory written!\n"
                                   "Resetting device\n") +
                            success));
    EXPECT_EQ(commands_of(device),
              (std::vector<std::string>{command("0201600000", counting(32)),
                                        command("0201800000", counting(32, 0x40)), "0000"}));
}
