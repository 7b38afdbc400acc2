#include "tests/device/OperationBench.h"
#include "tests/device/OperationCommands.h"

#include <gmock/gmock.h>

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

// A verification reads the last row of a memory so that it ends where the memory does. A row that
// is larger than its memory would begin before it.

namespace
{

const char* const different_types =
    "sig_error start and end addresses correspond to different memory types";

} // namespace

TEST(VerifyOfRowsLargerThanTheirMemory, FailsForFlashWithoutAMessageOfItsOwn)
{
    OperationBench bench("rows-above-memory", {{0x100, 0x10}});
    bench.install_image();
    EXPECT_FALSE(bench.verify());
    EXPECT_THAT(bench.line.sent(), IsEmpty());
    EXPECT_THAT(bench.line.recorder.lines(), ElementsAre(different_types));
    EXPECT_TRUE(bench.line.port.is_open());
}

TEST(VerifyOfRowsLargerThanTheirMemory, FailsForEepromWithoutAMessageOfItsOwn)
{
    OperationBench bench("rows-above-memory", {{0x1000, 4}});
    bench.install_image();
    EXPECT_FALSE(bench.verify());
    EXPECT_THAT(bench.line.sent(), IsEmpty());
    EXPECT_THAT(bench.line.recorder.lines(), ElementsAre(different_types));
}

TEST(VerifyOfRowsAsLargeAsTheirMemory, ReadsAllOfItForEachRow)
{
    OperationBench bench("rows-like-memory", {{0x110, 4}, {0x102F, 1}});
    bench.install_image();
    EXPECT_TRUE(bench.verify());
    EXPECT_THAT(bench.line.sent(),
                ElementsAre(hex(memory_command(0x01, 0x80, 0x80)), read_eeprom(0, 0x30)));
    EXPECT_EQ(bench.line.recorder.operation(), then_complete(verify_progress({4, 5}, 5)));
}
