#include "tests/app/ToolTest.h"
#include "tests/support/Bytes.h"
#include "tests/support/RowName.h"

using namespace test;

namespace
{

struct EraseCase {
    const char* name;
    const char* arguments; ///< after the version
    std::vector<std::string> commands;
};

std::ostream& operator<<(std::ostream& stream, const EraseCase& erase)
{
    return stream << erase.arguments;
}

class ToolErase : public ToolTest
{
};

class ToolWholeErase : public ToolTest, public testing::WithParamInterface<EraseCase>
{
};

class ToolRangeErase : public ToolTest, public testing::WithParamInterface<EraseCase>
{
};

// Pages at 0x80, 0x100, ..., 0x380; those from 0x100 to 0x280 are unencrypted. Two bytes per
// address.
const EraseCase whole_erases[] = {
    {"everything", "-e", {"0307400000"}},
    {"unencrypted_only", "-e -xe", {"0304800000"}},
    {"encrypted_only", "-e -xu", {"0301400000", "0302800100"}},
    {"neither", "-e -xe -xu", {}},
};

// The area flags become the two addresses, which are 1 by default. Pages of one byte make each
// visible.
const EraseCase range_erases[] = {
    {"default_is_1_to_1_addressed_at_the_minimum", "-E 0x100 0x1ff", {"0301000000"}},
    {"without_encrypted_is_0_to_1", "-E 0x100 0x1ff -xe", {"0302000000"}},
    {"without_unencrypted_is_1_to_0", "-E 0x100 0x1ff -xu", {}},
    {"without_either_is_0_to_0", "-E 0x100 0x1ff -xe -xu", {"0301000000"}},
    {"lower_of_0_spares_encrypted_pages", "-E 0 1 -xe", {"0301010000"}},
    {"upper_of_0_spares_unencrypted_pages", "-E 1 0 -xe", {"0301000000"}},
    {"both_of_0_spare_all", "-E 0 0 -xe", {}},
};

} // namespace

TEST_P(ToolWholeErase, SendsTheseCommands)
{
    sim::SimulatedDevice device(twin());
    const QByteArray arguments = QByteArray("-B 0102 ") + GetParam().arguments;
    EXPECT_EQ(
        run(device, arguments.constData()),
        exited(0, QByteArray("Version set to 0x0102 successfully!Erased all flash!\n") + success));
    EXPECT_EQ(commands_of(device), GetParam().commands);
}

INSTANTIATE_TEST_SUITE_P(Areas, ToolWholeErase, testing::ValuesIn(whole_erases), row_name);

TEST_P(ToolRangeErase, SendsTheseCommands)
{
    sim::SimulatedDevice device(mite());
    const QByteArray arguments = QByteArray("-B 0304 ") + GetParam().arguments;
    EXPECT_EQ(run(device, arguments.constData()),
              exited(0, QByteArray("Version set to 0x0304 successfully!Erased flash range!\n") +
                            success));
    EXPECT_EQ(commands_of(device), GetParam().commands);
}

INSTANTIATE_TEST_SUITE_P(Crossing, ToolRangeErase, testing::ValuesIn(range_erases), row_name);

TEST_F(ToolErase, EmptiesAllFlashBeyondTheBootloader)
{
    sim::SimulatedDevice device(solo());
    device.memory().preset(0, QByteArray(0x200, '\x00'));
    EXPECT_EQ(
        run(device, "-B 0203 -e"),
        exited(0, QByteArray("Version set to 0x0203 successfully!Erased all flash!\n") + success));
    EXPECT_EQ(device.memory().read(0, 0x200), QByteArray(0x40, '\x00') + QByteArray(0x1C0, '\xFF'));
}

TEST_F(ToolErase, OfARangeFailsWhereFlashBeginsAboveAddressOne)
{
    sim::SimulatedDevice device(twin());
    EXPECT_EQ(run(device, "-B 0102 -E 0x100 0x1ff"),
              exited(1, "Version set to 0x0102 successfully!"
                        "unable to erase at 00000001 below min flash address 0x00000001\n"
                        "Failed to erase flash range, aborting...\n"));
    EXPECT_EQ(heard_by(device), "");
}

TEST_F(ToolErase, FailsWhenTheDeviceRefuses)
{
    sim::SimulatedDevice device(twin());
    script_replies(device, {{{frame("02")}}});
    EXPECT_EQ(run(device, "-B 0102 -e -R"),
              exited(1, "Version set to 0x0102 successfully!"
                        "unable to erase 7 flash pages at address 0x00000080\n"
                        "Erase all flash failed? Aborting...\n"));
    EXPECT_EQ(commands_of(device), std::vector<std::string>{"0307400000"});
}

TEST_F(ToolErase, GivesUpOnADeviceThatNeverAnswers)
{
    sim::SimulatedDevice device(twin(), {sim::Entry::Silent});
    EXPECT_EQ(run(device, "-B 0102 -e"),
              exited(1, "Version set to 0x0102 successfully!"
                        "giving up after having made 40 attempts, with errors (" +
                            QByteArray("Response wait timed out\n").repeated(40) +
                            ")\n"
                            "unable to erase 7 flash pages at address 0x00000080\n"
                            "Erase all flash failed? Aborting...\n"));
    EXPECT_EQ(heard_by(device), small_digits(frame("0307400000").repeated(40)));
}
