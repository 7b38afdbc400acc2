#include "tests/app/QuadTest.h"
#include "tests/support/Bytes.h"

using namespace test;

namespace
{

/// The image files a.hex and b.hex have nothing in common.
class ToolOrder : public QuadTest
{
protected:
    ToolOrder()
    {
        put_image("a.hex", {{0x40, m_a}});
        put_image("b.hex", {{0xC0, m_b}});
        m_device.memory().preset(0xC0, m_b);
    }

    const QByteArray m_a = counting(0x20, 0x10);
    const QByteArray m_b = counting(0x20, 0x50);
    const std::string m_erase_all = "0304400000";
    const std::string m_write_a = write_flash(0x40, m_a);
};

/// The same on a device whose flash begins at 0, where a limited erase succeeds.
class ToolOrderOfRanges : public ToolTest
{
};

} // namespace

TEST_F(ToolOrder, IsEraseWriteReadVerifyResetWhateverTheLineSays)
{
    put_image("c.hex", {{0x40, m_a}, {0xC0, QByteArray(0x20, '\xFF')}});
    const ToolResult expected = succeeded(progress({0, 100}) +
                                          "Erased all flash!\n"
                                          "Now writingMemory written!\n"
                                          "Memory read!\n"
                                          "Verifying firmware\n" +
                                          progress({50, 100}) + "\nVerified!\nResetting device\n");
    const Commands commands = Commands{m_erase_all, m_write_a} + read_everything() +
                              Commands{read_flash(0x40), read_flash(0xC0), reset};
    for (const char* line :
         {"-e -w a.hex -r out.hex -v c.hex -R", "-R -v c.hex -r out.hex -w a.hex -e"}) {
        SCOPED_TRACE(line);
        m_device.clear_commands();
        EXPECT_EQ(operate(line), expected);
        EXPECT_EQ(commands_of(m_device), commands);
    }
}

TEST_F(ToolOrderOfRanges, IsTheSame)
{
    give_file("flash_at_zero.hex");
    sim::SimulatedDevice device(mite());
    EXPECT_EQ(run(device, "-B 0304 -v flash_at_zero.hex -l 0 0x10 out.hex "
                          "-W 0 0x8 flash_at_zero.hex -E 1 1"),
              exited(0, QByteArray("Version set to 0x0304 successfully!"
                                   "\rProgress 0%\rProgress 100%"
                                   "Erased flash range!\n"
                                   "Now writingMemory range written!\n"
                                   "Memory range read!\n"
                                   "Verifying firmware\n"
                                   "\rProgress 100%\n"
                                   "Verified!\n") +
                            success));
    EXPECT_EQ(commands_of(device), (Commands{"0301000000", "02010000000001020304050607",
                                             "0108000000", "0108080000", "0108000000"}));
    EXPECT_EQ(m_tool.file(QStringLiteral("out.hex")).toStdString(),
              saved_file({{0, counting(8)}, {8, QByteArray(8, '\xFF')}}));
}

// Each file is loaded for its own operation only.

TEST_F(ToolOrder, VerifiesNothingOfTheFileWritten)
{
    EXPECT_EQ(operate("-w a.hex -v b.hex"), succeeded(progress({0, 100}) +
                                                      "Now writingMemory written!\n"
                                                      "Verifying firmware\n" +
                                                      progress({100}) + "\nVerified!\n"));
    EXPECT_EQ(commands_of(m_device), (Commands{m_write_a, read_flash(0xC0)}));
}

TEST_F(ToolOrder, VerifiesTheFileWrittenWhenItIsNamedTwice)
{
    EXPECT_EQ(operate("-w a.hex -v a.hex"), succeeded(progress({0, 100}) +
                                                      "Now writingMemory written!\n"
                                                      "Verifying firmware\n" +
                                                      progress({100}) + "\nVerified!\n"));
    EXPECT_EQ(commands_of(m_device), (Commands{m_write_a, read_flash(0x40)}));
}

TEST_F(ToolOrder, VerifiesNothingWhenTheFileToVerifyIsEmpty)
{
    EXPECT_EQ(operate("-w a.hex -v empty.hex"),
              failed(progress({0, 100}) + "Now writingMemory written!\n"
                                          "Verifying firmware\n\nVerification failure!\n"));
    EXPECT_EQ(commands_of(m_device), Commands{m_write_a});
}

TEST_F(ToolOrder, VerifiesWhatWasReadWhenItIsTheSameFile)
{
    EXPECT_EQ(operate("-v out.hex -l 0xC0 0x100 out.hex"),
              succeeded("Memory range read!\nVerifying firmware\n" + progress({50, 100}) +
                        "\nVerified!\n"));
    EXPECT_EQ(commands_of(m_device),
              (Commands{read_flash(0xC0), read_flash(0xE0), read_flash(0xC0), read_flash(0xE0)}));
}

TEST_F(ToolOrder, ReplacesTheFileWrittenByWhatIsRead)
{
    EXPECT_EQ(operate("-w a.hex -l 0x40 0x80 a.hex"),
              succeeded(progress({0, 100}) + "Now writingMemory written!\nMemory range read!\n"));
    EXPECT_EQ(file("a.hex"), saved_file({{0x40, m_a}, {0x60, QByteArray(0x20, '\xFF')}}));
}

// The first failure is the end; what was printed before it shows, and what was done stays done.

TEST_F(ToolOrder, EndsAtAFailedWrite)
{
    reply_from(1, frame("03"), 1);
    EXPECT_EQ(operate("-e -w a.hex -r out.hex -v b.hex -R"),
              failed(progress({0}) + "unable to write flash row at address 0x00000040\n"
                                     "Erased all flash!\n"
                                     "Now writingFailed to write memory, aborting...\n"));
    EXPECT_EQ(commands_of(m_device), (Commands{m_erase_all, m_write_a}));
    EXPECT_EQ(file("out.hex"), "");
}

TEST_F(ToolOrder, EndsAtAFailedRead)
{
    reply_from(3, frame("02"));
    EXPECT_EQ(operate("-e -w a.hex -r out.hex -v b.hex -R"),
              failed(progress({0, 100}) + given_up_on_wrong_answers() +
                     "read() at 00000060 could not be performed\n"
                     "Erased all flash!\n"
                     "Now writingMemory written!\n"
                     "Failed to read memory, aborting...\n"));
    EXPECT_EQ(commands_of(m_device), (Commands{m_erase_all, m_write_a, read_flash(0x40)} +
                                      Commands(attempts, read_flash(0x60))));
}

TEST_F(ToolOrder, EndsAtAFailedRangedRead)
{
    reply_from(1, frame("02"));
    EXPECT_EQ(operate("-W 0x40 0x60 a.hex -l 0x40 0x60 out.hex -v b.hex -R"),
              failed(progress({0, 100}) + given_up_on_wrong_answers() +
                     "read() at 00000040 could not be performed\n"
                     "Now writingMemory range written!\n"
                     "Failed to read memory range, aborting...\n"));
    EXPECT_EQ(commands_of(m_device), Commands{m_write_a} + Commands(attempts, read_flash(0x40)));
}

TEST_F(ToolOrder, EndsAtAFailedVerification)
{
    EXPECT_EQ(operate("-e -l 0x40 0x60 out.hex -v b.hex -R"),
              failed("Erased all flash!\n"
                     "Memory range read!\n"
                     "Verifying firmware\n"
                     "data mismatch starting at address 0x000000C0\n"
                     "device data size 32: FF" +
                     QByteArray(" FF").repeated(31) + "\nexpected data 32: " +
                     m_b.toHex(' ').toUpper() + "\n\nVerification failure!\n"));
    EXPECT_EQ(commands_of(m_device),
              (Commands{m_erase_all, read_flash(0x40)} + Commands(4, read_flash(0xC0))));
    EXPECT_EQ(file("out.hex"), saved_file({{0x40, QByteArray(0x20, '\xFF')}}));
}

TEST_F(ToolOrder, EndsAtABadFileToVerifyWhenTheOthersAreDone)
{
    give_file("bad_checksum.hex");
    EXPECT_EQ(operate("-w a.hex -l 0x40 0x60 out.hex -v bad_checksum.hex -R"),
              failed(progress({0, 100}) +
                     "Now writingMemory written!\n"
                     "Memory range read!\n"
                     "Could not process firmware file bad_checksum.hex as intel hex 32 format "
                     "during verify, aborting..."));
    EXPECT_EQ(commands_of(m_device), (Commands{m_write_a, read_flash(0x40)}));
    EXPECT_EQ(file("out.hex"), saved_file({{0x40, m_a}}));
}
