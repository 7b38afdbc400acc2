#include "tests/gang/GangTest.h"

using namespace test;

namespace
{

class GangCertify : public GangTest
{
protected:
    QJsonObject certified(const char* device_options, const char* arguments)
    {
        m_device = device(device_options);
        m_result = run(m_device->port(), arguments, "--certify");
        return m_result.last("end");
    }

    std::unique_ptr<SimProcess> m_device;
    GangResult m_result;
};

TEST_F(GangCertify, AGoodDevice)
{
    EXPECT_EQ(text(certified("--entry version", "-B 0102 -e -w image.hex -R"), "verdict"), "ok")
        << m_result;
    const QJsonObject commands = m_device->stop();
    EXPECT_EQ(commands.value(QStringLiteral("commands"))
                  .toObject()
                  .value(QStringLiteral("reset"))
                  .toInt(),
              1)
        << "reset once, after both";
}

TEST_F(GangCertify, FindsEepromThatWriteAndVerifyDoesNotReadBack)
{
    const char* const fault = "--entry version --fault stuck-bits:0x1012:0x01:1";
    EXPECT_EQ(text(certified(fault, "-B 0102 -wv image.hex"), "verdict"), "mismatch") << m_result;
    EXPECT_EQ(text(m_result.last("end"), "message"),
              "certification: data mismatch starting at address 0x00001010");
    const auto same = device(fault);
    EXPECT_EQ(text(run(same->port(), "-B 0102 -wv image.hex").last("end"), "verdict"), "ok")
        << "which one pass does not notice";
}

TEST_F(GangCertify, FindsADeviceThatIsAnotherOne)
{
    // The same device under a second version, with which the upload succeeds.
    const QByteArray table = file(QStringLiteral("device.txt"));
    const int row = table.indexOf("v0102:");
    put_file(QStringLiteral("device.txt"),
             table + table.mid(row, table.indexOf('\n', row) - row).replace("v0102:", "v0112:") +
                 '\n');
    EXPECT_EQ(text(certified("--entry version", "-B 0112 -e -w image.hex"), "verdict"),
              "unknown-version")
        << m_result;
    EXPECT_EQ(text(m_result.last("end"), "message"),
              "certification: the device was written as version 0x0112 and reports 0x0102");
}

TEST_F(GangCertify, ADeviceThatHasGoneKeepsTheVersionItWasWrittenAs)
{
    // Five commands upload, the next one asks for the version again. The port stays: that of a
    // device that has been unplugged could become the port of another test's device.
    EXPECT_EQ(text(certified("--entry version --fault power-loss@6", "-B 0102 -e -w image.hex"),
                   "verdict"),
              "silent")
        << m_result;
    EXPECT_THAT(text(m_result.last("end"), "message"), testing::StartsWith("certification: "));
    EXPECT_EQ(text(m_result.last("end"), "version"), "0x0102");
}

} // namespace
