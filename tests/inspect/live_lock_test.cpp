#include "inspect/PortLocks.h"
#include "sim/device/SimulatedDevice.h"
#include "tests/inspect/InspectTest.h"
#include "tests/support/ToolRun.h"

#include <QCoreApplication>
#include <QProcess>
#include <gtest/gtest.h>

#include <memory>

using namespace test;

// What the real uploader does about the lock files that are reported.

namespace
{

class LiveLock : public testing::Test
{
protected:
    LiveLock() { m_tool.put_file(QStringLiteral("device.txt"), table_row()); }

    ~LiveLock() override { QFile::remove(lock_path()); }

    /// The status of a run on a port with a lock file of this content.
    int run_with_lock(const QByteArray& content) const
    {
        QFile lock(lock_path());
        EXPECT_TRUE(lock.open(QIODevice::WriteOnly)) << lock.fileName().toStdString();
        lock.write(content);
        lock.close();
        return m_tool
            .run({QStringLiteral("-s"), m_device.port_path(), QStringLiteral("-B"),
                  QStringLiteral("0110")})
            .status;
    }

    bool is_locked() const { return QFile::exists(lock_path()); }

    QString lock_path() const
    {
        return inspect::lock_folder({}) + QStringLiteral("/LCK..") +
               m_device.port_path().mid(5).replace(QLatin1Char('/'), QLatin1Char('_'));
    }

    ToolRun m_tool;
    const std::unique_ptr<Profile> m_profile = lark_profile();
    sim::SimulatedDevice m_device{*m_profile};
};

QByteArray own_process()
{
    return QByteArray::number(QCoreApplication::applicationPid());
}

/// Of a process that has ended.
QByteArray ended_process()
{
    QProcess process;
    process.start(QStringLiteral("true"), {});
    EXPECT_TRUE(process.waitForStarted());
    const qint64 id = process.processId();
    EXPECT_TRUE(process.waitForFinished());
    return QByteArray::number(id);
}

/// The program of this process, as a lock names it.
QByteArray own_name()
{
    return QFileInfo(QCoreApplication::applicationFilePath()).fileName().toUtf8();
}

} // namespace

TEST_F(LiveLock, OfARunningProgramKeepsTheUploaderOff)
{
    EXPECT_EQ(run_with_lock(own_process() + '\n' + own_name() + '\n'), 1);
    EXPECT_TRUE(is_locked());
}

TEST_F(LiveLock, OfAProgramThatHasEndedIsRemoved)
{
    EXPECT_EQ(run_with_lock(ended_process() + "\nzserial\n"), 0);
    EXPECT_FALSE(is_locked());
}

TEST_F(LiveLock, OfAnotherProgramWithTheSameNumberIsRemoved)
{
    EXPECT_EQ(run_with_lock(own_process() + "\nzserial\n"), 0);
    EXPECT_FALSE(is_locked());
}

TEST_F(LiveLock, ThatNamesTheProcessAloneIsRemovedThoughItRuns)
{
    EXPECT_EQ(run_with_lock("     " + own_process() + '\n'), 0);
    EXPECT_FALSE(is_locked());
}

TEST_F(LiveLock, ThatNamesNobodyKeepsTheUploaderOffAtFirst)
{
    EXPECT_EQ(run_with_lock("nobody\n"), 1);
    EXPECT_TRUE(is_locked());
}
