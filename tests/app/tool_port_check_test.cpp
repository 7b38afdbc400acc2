#include "tests/app/ToolTest.h"

#include <QDir>
#include <QFileInfo>

using namespace test;

namespace
{

/// The first check of the port, before the device object exists, which opens the port again itself.
class ToolPortCheck : public ToolTest
{
protected:
    static bool has_open(qint64 process, const QString& name)
    {
        const QDir descriptors(QStringLiteral("/proc/%1/fd").arg(process));
        const QFileInfoList all = descriptors.entryInfoList(QDir::Files | QDir::System);
        return std::any_of(all.begin(), all.end(), [&](const QFileInfo& descriptor) {
            return descriptor.symLinkTarget() == name;
        });
    }
};

/// A version of 0 counts as not given, so the tool asks the device as it does without "-B".
class ToolVersionZero : public ToolTest
{
};

} // namespace

TEST_F(ToolPortCheck, ClosesThePortAgainAndLeavesNoLock)
{
    sim::SimulatedDevice device(twin());
    bool was_looked_at = false;
    bool was_open = true;
    QStringList locks;
    m_tool.once_printed("successfully!", [&](qint64 process) {
        was_looked_at = true;
        was_open = has_open(process, device.port_path());
        locks = locks_on(device.port_path());
    });
    EXPECT_EQ(run(device, "-B 0102"),
              exited(0, QByteArray("Version set to 0x0102 successfully!") + success));
    EXPECT_TRUE(was_looked_at);
    EXPECT_FALSE(was_open);
    EXPECT_EQ(locks, QStringList());
}

TEST_F(ToolPortCheck, SendsNothing)
{
    sim::SimulatedDevice device(twin());
    EXPECT_EQ(run(device, "-V"), exited(1, "Version request failed, aborting...\n"));
    EXPECT_EQ(heard_by(device), "");
}

TEST_F(ToolVersionZero, RunsTheEntryProcedure)
{
    sim::SimulatedDevice device(twin());
    EXPECT_EQ(run(device, "-B 0 -R"),
              exited(0, "Retrieved version number during QV entry procedure: 0x0102\n"
                        "Resetting device\n" +
                            QByteArray(success)));
    EXPECT_EQ(commands_of(device), std::vector<std::string>{"0000"});
}

TEST_F(ToolVersionZero, LeavesTheVersionRequestItsTurn)
{
    sim::SimulatedDevice device(twin());
    EXPECT_EQ(run(device, "-B 0x0000 -V"), exited(1, "Version request failed, aborting...\n"));
    EXPECT_EQ(heard_by(device), "");
}

TEST_F(ToolVersionZero, MayBeFollowedByAnother)
{
    sim::SimulatedDevice device(twin());
    EXPECT_EQ(run(device, "-B 0 -B 0102"),
              exited(0, QByteArray("Version set to 0x0102 successfully!") + success));
    EXPECT_EQ(heard_by(device), "");
}

TEST_F(ToolVersionZero, MayNotFollowAnother)
{
    sim::SimulatedDevice device(twin());
    EXPECT_EQ(run(device, "-B 0102 -B 0"), exited(1, "Please specify -B version only once.\n"));
    EXPECT_EQ(heard_by(device), "");
}
