#include "sim/program/Session.h"
#include "tests/sim/SampleDevice.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTimer>
#include <gtest/gtest.h>

#include <stdexcept>

using namespace test;
using sim::Arguments;
using sim::Session;

namespace
{

/// A session in the test's own process, for errors that cannot be caused from outside.
class SimSession : public testing::Test
{
protected:
    QString path(const char* name) const { return folder.filePath(QString::fromLatin1(name)); }

    QString write_file(const char* name, const QByteArray& content) const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return file.fileName();
    }

    QByteArray file_content(const char* name) const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    Arguments arguments() const
    {
        Arguments arguments;
        const QStringList fields = sample_fields({{Profile::bootloader_version, "v0123:"}});
        arguments.table = write_file("table", fields.join(QLatin1Char('\t')).toUtf8());
        arguments.memory_image = write_file("image.hex", ":0410000001020304E2\n:00000001FF\n");
        arguments.state = path("state");
        arguments.save_image = path("saved.hex");
        arguments.summary = path("summary");
        return arguments;
    }

    QTemporaryDir folder;
};

} // namespace

TEST_F(SimSession, SavesEverythingWhenServingFails)
{
    Session session(arguments());
    QTimer::singleShot(0, [] { throw std::runtime_error("no more memory, say"); });
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_EQ(session.run(), sim::ExitFailed);
    testing::internal::GetCapturedStdout();
    const std::string complaints = testing::internal::GetCapturedStderr();
    EXPECT_NE(complaints.find("zserial-sim: no more memory, say\n"), std::string::npos)
        << complaints;
    EXPECT_TRUE(file_content("state").endsWith("\n00001000 01020304\nend\n"));
    EXPECT_EQ(file_content("saved.hex"), ":0410000001020304E2\n:00000001FF\n");
    EXPECT_TRUE(file_content("summary").startsWith("commands: 0 probe"));
}
