#include "tests/app/ToolTest.h"

using namespace test;

namespace
{

/// Ways to a version that do not ask the device.
class ToolVersion : public ToolTest
{
protected:
    ToolResult run(const char* arguments) { return ToolTest::run(m_device, arguments); }

    void expect_0x0102_without_asking(const char* arguments)
    {
        EXPECT_EQ(run(arguments),
                  exited(0, QByteArray("Version set to 0x0102 successfully!") + success));
        EXPECT_EQ(heard_by(m_device), "");
    }

    sim::SimulatedDevice m_device{twin()};
};

} // namespace

TEST_F(ToolVersion, RequestFailsWithoutASelectedProfile)
{
    EXPECT_EQ(run("-V"), exited(1, "Version request failed, aborting...\n"));
    EXPECT_EQ(heard_by(m_device), "");
}

TEST_F(ToolVersion, RequestAfterEntryProcedureTakesItsPlace)
{
    EXPECT_EQ(run("-b -V -e -R"), exited(1, "Version request failed, aborting...\n"));
    EXPECT_EQ(heard_by(m_device), "");
}

TEST_F(ToolVersion, RequestNeedsNoTable)
{
    ToolRun without_table;
    EXPECT_EQ(without_table.run({QStringLiteral("-s"), m_device.port_path(), QStringLiteral("-V")}),
              exited(1, "Version request failed, aborting...\n"));
}

TEST_F(ToolVersion, GivenIsTakenOnTrust)
{
    expect_0x0102_without_asking("-B 102");
}

TEST_F(ToolVersion, GivenMakesTheEntryProcedureUnnecessary)
{
    expect_0x0102_without_asking("-b -B 0x0102");
}

TEST_F(ToolVersion, GivenMakesTheRequestUnnecessary)
{
    expect_0x0102_without_asking("-B 0102 -V");
}

TEST_F(ToolVersion, GivenIsShownInLowerCase)
{
    EXPECT_EQ(run("-B FF80"),
              exited(0, QByteArray("Version set to 0xff80 successfully!") + success));
}

TEST_F(ToolVersion, GivenMustBeKnown)
{
    EXPECT_EQ(run("-B abc -e -R"),
              exited(1, "no profile for device (bootloader version = 0ABC)\n"
                        "Could not find device profile matching specified 0x0abc, aborting..."));
    EXPECT_EQ(heard_by(m_device), "");
}

TEST_F(ToolVersion, GivenWithMoreThan16BitsIsCutButShownWhole)
{
    EXPECT_EQ(run("-B 10102"),
              exited(0, QByteArray("Version set to 0x10102 successfully!") + success));
}

TEST_F(ToolVersion, GivenWithNothingInItsLow16BitsIsUnknown)
{
    EXPECT_EQ(run("-B 0x10000"),
              exited(1, "no profile for device (bootloader version = 0000)\n"
                        "Could not find device profile matching specified 0x10000, aborting..."));
}
