#include "inspect/RunOrder.h"
#include "inspect/SentCommand.h"

#include <gtest/gtest.h>

// Which commands one run of the uploader can send after each other.

using inspect::command_of;
using inspect::RunOrder;
using inspect::SentCommand;

namespace
{

SentCommand command(const char* payload)
{
    return command_of(QByteArray::fromHex(payload));
}

/// The first of these commands that the run before it cannot have sent; -1 for none.
int first_of_another_run(const std::vector<const char*>& payloads)
{
    RunOrder order;
    for (std::size_t i = 0; i < payloads.size(); ++i) {
        if (!order.take(command(payloads.at(i)))) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

} // namespace

TEST(SentCommand, IsWhatItsPayloadSays)
{
    EXPECT_EQ(command("0002").kind, SentCommand::Kind::Version);
    EXPECT_EQ(command("0000").kind, SentCommand::Kind::Reset);
    EXPECT_EQ(command("0001").kind, SentCommand::Kind::Unknown);
    EXPECT_EQ(command("0140000800").kind, SentCommand::Kind::Read);
    EXPECT_EQ(command("014000080000").kind, SentCommand::Kind::Unknown);
    EXPECT_EQ(command("0410000000").memory, MEMORY_EEPROM);
    EXPECT_EQ(command("031e000800").kind, SentCommand::Kind::Erase);
    EXPECT_EQ(command("020100080001").kind, SentCommand::Kind::Write);
    EXPECT_EQ(command("0201000800").kind, SentCommand::Kind::Unknown);
    EXPECT_EQ(command("0510000000ff").memory, MEMORY_EEPROM);
    EXPECT_EQ(command("06").kind, SentCommand::Kind::Unknown);
}

TEST(SentCommand, HasItsAddressLowByteFirst)
{
    const SentCommand erase = command("031e010203");
    EXPECT_EQ(erase.count, 30U);
    EXPECT_EQ(erase.word_address, 0x030201U);
    EXPECT_EQ(command("020100080001ff").data_bytes, 2);
}

TEST(RunOrder, GoesThroughTheSteps)
{
    EXPECT_EQ(first_of_another_run({"031e000800", "020100080001", "020180080001", "051000000001",
                                    "0140000800", "0410000000", "0140000800", "0140000800"}),
              -1);
}

TEST(RunOrder, DoesNotEraseOrWriteAfterALaterStep)
{
    EXPECT_EQ(first_of_another_run({"020100080001", "031e000800"}), 1);
    EXPECT_EQ(first_of_another_run({"0140000800", "0410000000", "020100080001"}), 2);
    EXPECT_EQ(first_of_another_run({"051000000001", "020100080001"}), 1);
}

TEST(RunOrder, GoesUpWithinAStep)
{
    EXPECT_EQ(first_of_another_run({"031e000800", "031e000800"}), 1);
    EXPECT_EQ(first_of_another_run({"020180080001", "020100080001"}), 1);
    EXPECT_EQ(first_of_another_run({"051010000001", "051000000001"}), 1);
}

TEST(RunOrder, MayWriteARowOfEepromTwice)
{
    EXPECT_EQ(first_of_another_run({"051000000001", "051000000002"}), -1);
}

TEST(RunOrder, UpdatesPageByPage)
{
    EXPECT_EQ(first_of_another_run({"0140000800", "0301000800", "020100080001", "0140000800",
                                    "020180080001", "0140800800", "0140000c00", "0301000c00",
                                    "0201000c0001", "0140000c00", "051000000001"}),
              -1);
}

TEST(RunOrder, UpdatesNoPageTwice)
{
    EXPECT_EQ(first_of_another_run({"0301000c00", "0201000c0001", "0140000c00", "0301000800"}), 3);
}

TEST(RunOrder, ReadsNoEepromPageByPage)
{
    EXPECT_EQ(first_of_another_run({"0301000800", "020100080001", "0140000800", "0301000c00",
                                    "0201000c0001", "0140000c00", "0410000000"}),
              6);
}

TEST(RunOrder, GoesOnOnlyAfterAReadThatIsGivenUp)
{
    RunOrder comparison;
    EXPECT_TRUE(comparison.take(command("0140000800")));
    comparison.give_up();
    EXPECT_TRUE(comparison.take(command("0301000800")));
    RunOrder same;
    EXPECT_TRUE(same.take(command("0140000800")));
    same.give_up();
    EXPECT_FALSE(same.take(command("0140000800")));
    RunOrder erase;
    EXPECT_TRUE(erase.take(command("0301000800")));
    erase.give_up();
    EXPECT_FALSE(erase.take(command("020100080001")));
}
