#include "inspect/PortAccess.h"
#include "tests/inspect/FakeSystem.h"
#include "tests/inspect/InspectTest.h"
#include "tests/inspect/ProcessRun.h"
#include "tests/support/OtherUser.h"

#include <QDir>
#include <QFileInfo>
#include <QSerialPortInfo>
#include <gmock/gmock.h>

#include <unistd.h>

using namespace test;

// Serial ports and what keeps a user from them, on trees of made-up systems and on this machine.

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace
{

class Ports : public testing::Test
{
protected:
    QStringList words(const QStringList& more = {}) const
    {
        return QStringList(QStringLiteral("ports")) + m_system.roots() + more;
    }

    QJsonObject report(const QStringList& more = {}) const { return inspect_json(words(more)); }

    QJsonObject only_port(const QStringList& more = {}) const
    {
        const QJsonArray ports = report(more)[QStringLiteral("ports")].toArray();
        EXPECT_EQ(ports.size(), 1);
        return ports.first().toObject();
    }

    void add_adapter() const { m_system.add_adapter(QStringLiteral("ttyUSB0")); }

    void lock(const QByteArray& content) const
    {
        m_system.put(QStringLiteral("locks/LCK..ttyUSB0"), content);
    }

    void close_port(int permissions) const
    {
        EXPECT_TRUE(QFile::setPermissions(m_system.path(QStringLiteral("dev/ttyUSB0")),
                                          QFileDevice::Permissions(permissions)));
    }

    FakeSystem m_system;
};

std::string message_of(const QJsonObject& report, const char* code, const char* key = "message")
{
    for (const QJsonValue problem : report[QStringLiteral("problems")].toArray()) {
        if (problem[QStringLiteral("code")] == QLatin1String(code)) {
            return problem[QLatin1String(key)].toString().toStdString();
        }
    }
    return "no such problem";
}

} // namespace

TEST_F(Ports, HaveWhatTheSystemSaysOfTheirAdapter)
{
    add_adapter();
    EXPECT_THAT(codes(report()), IsEmpty());
    const QJsonObject port = only_port();
    EXPECT_EQ(port[QStringLiteral("name")], QStringLiteral("ttyUSB0"));
    EXPECT_EQ(port[QStringLiteral("path")], m_system.path(QStringLiteral("dev/ttyUSB0")));
    EXPECT_EQ(port[QStringLiteral("description")], QStringLiteral("FT232R USB UART"));
    EXPECT_EQ(port[QStringLiteral("manufacturer")], QStringLiteral("FTDI"));
    EXPECT_EQ(port[QStringLiteral("vendor_id")], QStringLiteral("0403"));
    EXPECT_EQ(port[QStringLiteral("product_id")], QStringLiteral("6001"));
    EXPECT_EQ(port[QStringLiteral("serial_number")], QStringLiteral("A50285BI"));
    EXPECT_EQ(port[QStringLiteral("driver")], QStringLiteral("ftdi_sio"));
    EXPECT_EQ(port[QStringLiteral("latency_ms")].toInt(), 1);
    EXPECT_EQ(port[QStringLiteral("by_id")].toArray(),
              QJsonArray{m_system.path(
                  QStringLiteral("dev/serial/by-id/usb-FTDI_FT232R_A50285BI-if00-port0"))});
}

TEST_F(Ports, OfTheMachineItselfHaveTheDriverBehindTheKernelsLayer)
{
    m_system.add_built_in_port(QStringLiteral("ttyS0"), "4\n");
    const QJsonObject port = only_port();
    EXPECT_EQ(port[QStringLiteral("driver")], QStringLiteral("serial"));
    EXPECT_TRUE(port[QStringLiteral("vendor_id")].isNull());
    EXPECT_TRUE(port[QStringLiteral("latency_ms")].isNull());
}

TEST_F(Ports, WithoutHardwareAreLeftOut)
{
    m_system.add_built_in_port(QStringLiteral("ttyS1"), "0\n");
    m_system.put(QStringLiteral("sys/class/tty/tty1/dev"), "4:1\n");
    EXPECT_THAT(codes(report()), ElementsAre("S002"));
}

TEST_F(Ports, AreSortedAsPeopleCount)
{
    m_system.add_built_in_port(QStringLiteral("ttyS10"), "4\n");
    m_system.add_built_in_port(QStringLiteral("ttyS2"), "4\n");
    const QJsonArray ports = report()[QStringLiteral("ports")].toArray();
    EXPECT_EQ(ports.at(0)[QStringLiteral("name")].toString(), QStringLiteral("ttyS2"));
    EXPECT_EQ(ports.at(1)[QStringLiteral("name")].toString(), QStringLiteral("ttyS10"));
}

TEST_F(Ports, CannotBeListedWithoutAListOfDevices)
{
    ASSERT_TRUE(QDir(m_system.path(QStringLiteral("sys"))).removeRecursively());
    const inspect::Outcome outcome = inspect_run(words());
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(codes(report()), ElementsAre("S001"));
}

TEST_F(Ports, MayLackTheirDeviceFile)
{
    add_adapter();
    ASSERT_TRUE(QFile::remove(m_system.path(QStringLiteral("dev/ttyUSB0"))));
    EXPECT_THAT(codes(report()), ElementsAre("S003"));
    EXPECT_TRUE(only_port().value(QStringLiteral("access")).isNull());
}

TEST_F(Ports, ThatAreOpenToEverybodyAreOpenToEveryUser)
{
    add_adapter();
    const QStringList nobody = {QStringLiteral("--user"), QStringLiteral("nobody")};
    EXPECT_THAT(codes(report(nobody)), IsEmpty());
    EXPECT_EQ(report(nobody)[QStringLiteral("user")].toString(), QStringLiteral("nobody"));
    EXPECT_EQ(only_port(nobody)
                  .value(QStringLiteral("access"))
                  .toObject()
                  .value(QStringLiteral("through"))
                  .toString(),
              QStringLiteral("everybody"));
}

TEST_F(Ports, ThatAreOpenToAGroupAreClosedToOthers)
{
    add_adapter();
    close_port(0x6660);
    const QJsonObject found = report({QStringLiteral("--user"), QStringLiteral("nobody")});
    EXPECT_THAT(codes(found), ElementsAre("S004"));
    EXPECT_THAT(message_of(found, "S004"),
                HasSubstr("User nobody may not read and write it (mode 0660, owner "));
}

TEST_F(Ports, MayBelongToAUserAndAGroupWithoutNames)
{
    add_adapter();
    close_port(0x6660);
    constexpr unsigned int id = 4242424;
    const QByteArray path = QFile::encodeName(m_system.path(QStringLiteral("dev/ttyUSB0")));
    if (::chown(path.constData(), id, id) != 0) {
        GTEST_SKIP() << "only root can give a file away";
    }
    const QJsonObject found = report({QStringLiteral("--user"), QStringLiteral("nobody")});
    EXPECT_THAT(message_of(found, "S004"), HasSubstr("(mode 0660, owner 4242424, group 4242424)."));
    EXPECT_THAT(message_of(found, "S004", "remedy"),
                HasSubstr("groupadd -g 4242424 NAME and run usermod -aG NAME nobody;"));
    const inspect::User member{QStringLiteral("a"), id + 1, {id}, false};
    EXPECT_EQ(inspect::access_to(QFile::decodeName(path), member).through,
              QStringLiteral("group 4242424"));
}

TEST_F(Ports, AreJudgedByTheFirstOfOwnerGroupAndOthersThatFits)
{
    add_adapter();
    const QString path = m_system.path(QStringLiteral("dev/ttyUSB0"));
    const QFileInfo file(path);
    const inspect::User owner{QStringLiteral("a"), file.ownerId() + 1000, {}, false};
    inspect::User member = owner;
    member.groups = {file.groupId()};
    close_port(0x6606);
    EXPECT_TRUE(inspect::access_to(path, owner).is_open_to_user);
    EXPECT_FALSE(inspect::access_to(path, member).is_open_to_user);
    close_port(0x6660);
    EXPECT_FALSE(inspect::access_to(path, owner).is_open_to_user);
    EXPECT_EQ(inspect::access_to(path, member).through, QStringLiteral("group ") + file.group());
    close_port(0x6640);
    EXPECT_FALSE(inspect::access_to(path, member).is_open_to_user);
}

TEST_F(Ports, MayBelongToTheUser)
{
    add_adapter();
    const QString path = m_system.path(QStringLiteral("dev/ttyUSB0"));
    if (::geteuid() == 0) {
        ASSERT_EQ(::chown(QFile::encodeName(path).constData(), 4242424, 4242424), 0);
    }
    const inspect::User owner{QStringLiteral("a"), QFileInfo(path).ownerId(), {}, false};
    close_port(0x6600);
    EXPECT_EQ(inspect::access_to(path, owner).through, QStringLiteral("owner"));
    close_port(0x0066);
    EXPECT_FALSE(inspect::access_to(path, owner).is_open_to_user) << "the owner is no other";
}

TEST_F(Ports, MayBeOpenToTheUserByMoreThanTheirMode)
{
    add_adapter();
    const QString path = m_system.path(QStringLiteral("dev/ttyUSB0"));
    // This process may open the file; nothing in its mode says so of a user of another number.
    close_port(0x6600);
    const inspect::User user{QStringLiteral("a"), QFileInfo(path).ownerId() + 1, {}, true};
    EXPECT_EQ(inspect::access_to(path, user).through, QStringLiteral("an access list"));
}

TEST_F(Ports, MayBelongToAGroupThatTheUserCanJoin)
{
    add_adapter();
    close_port(0x6660);
    const QString path = m_system.path(QStringLiteral("dev/ttyUSB0"));
    if (::geteuid() == 0) {
        constexpr gid_t daemon = 1;
        ASSERT_EQ(::chown(QFile::encodeName(path).constData(), 0, daemon), 0);
    }
    const QJsonObject found = report({QStringLiteral("--user"), QStringLiteral("nobody")});
    EXPECT_EQ(message_of(found, "S004", "remedy"), "Run usermod -aG " +
                                                       QFileInfo(path).group().toStdString() +
                                                       " nobody as root, and log in again.");
}

TEST_F(Ports, MayBeOpenInProgramsThatTheUserMayNotLookInto)
{
    add_adapter();
    m_system.add_process(4711, "minicom");
    m_system.link(QStringLiteral("proc/4711/fd/3"), QStringLiteral("/dev/ttyUSB0"));
    ASSERT_TRUE(QFile::setPermissions(m_system.path(QString()), QFileDevice::Permissions(0x7777)));
    ASSERT_TRUE(QFile::setPermissions(m_system.path(QStringLiteral("proc/4711/fd")), {}));
    {
        const OtherUser user;
        const QJsonObject found = report();
        EXPECT_EQ(found[QStringLiteral("unseen_processes")].toInt(), 1);
        EXPECT_THAT(codes(found), Not(Contains("S005")));
        EXPECT_THAT(inspect_run(words()).out.simplified().toStdString(),
                    HasSubstr("The open files of 1 process of other users cannot be seen."));
    }
    ASSERT_TRUE(QFile::setPermissions(m_system.path(QStringLiteral("proc/4711/fd")),
                                      QFileDevice::Permissions(0x7777)));
}

TEST_F(Ports, MayHaveNoDriver)
{
    add_adapter();
    ASSERT_TRUE(QFile::remove(
        m_system.path(QStringLiteral("sys/devices/usb1/1-1/1-1:1.0/ttyUSB0/driver"))));
    EXPECT_TRUE(only_port()[QStringLiteral("driver")].isNull());
}

TEST_F(Ports, MayBeOpenInAnotherProgram)
{
    add_adapter();
    m_system.add_process(4711, "minicom");
    m_system.add_process(4712, "bash");
    m_system.link(QStringLiteral("proc/4711/fd/3"), QStringLiteral("/dev/ttyUSB0"));
    m_system.link(QStringLiteral("proc/4711/fd/4"), QStringLiteral("/dev/ttyUSB0"));
    m_system.link(QStringLiteral("proc/4712/fd/0"), QStringLiteral("/dev/pts/1"));
    m_system.put(QStringLiteral("proc/4713/comm"), "ended just now");
    const QJsonObject found = report();
    EXPECT_THAT(codes(found), ElementsAre("S005"));
    EXPECT_EQ(message_of(found, "S005"), "Process 4711 (minicom) has it open.");
    EXPECT_EQ(only_port().value(QStringLiteral("holders")).toArray().size(), 1);
}

TEST_F(Ports, MayBeLockedByAProcessThatRuns)
{
    add_adapter();
    m_system.add_process(4711, "zserial");
    lock("4711\nzserial\nhost\nmachine\nthis-boot\n");
    const QJsonObject found = report();
    EXPECT_THAT(codes(found), ElementsAre("S006"));
    EXPECT_THAT(message_of(found, "S006"), HasSubstr("LCK..ttyUSB0 names process 4711 (zserial)"));
}

TEST_F(Ports, MayBeLockedByAProgramThatWasStartedUnderAnotherName)
{
    add_adapter();
    m_system.add_process(4711, "flasher");
    lock("4711\nzserial\nhost\nmachine\nthis-boot\n");
    for (const char* program : {"/usr/bin/zserial", "/usr/bin/zserial (deleted)"}) {
        m_system.link(QStringLiteral("proc/4711/exe"), QLatin1String(program));
        EXPECT_THAT(codes(report()), ElementsAre("S006")) << program;
        ASSERT_TRUE(QFile::remove(m_system.path(QStringLiteral("proc/4711/exe"))));
    }
    m_system.link(QStringLiteral("proc/4711/exe"), QStringLiteral("/usr/bin/flasher"));
    EXPECT_THAT(codes(report()), ElementsAre("S007"));
}

TEST_F(Ports, MayBeLockedByAProgramWithALongName)
{
    add_adapter();
    m_system.add_process(4711, "a-serial-upload");
    lock("4711\na-serial-uploader\nhost\nmachine\nthis-boot\n");
    EXPECT_THAT(codes(report()), ElementsAre("S006"));
    m_system.add_process(4711, "a"); // not cut: another program
    EXPECT_THAT(codes(report()), ElementsAre("S007"));
}

TEST_F(Ports, MayBeLockedInTheFormOfOtherPrograms)
{
    add_adapter();
    m_system.add_process(4711, "minicom");
    lock("      4711\n");
    const QJsonObject found = report();
    EXPECT_THAT(codes(found), ElementsAre("S006"));
    EXPECT_THAT(message_of(found, "S006", "uploader"),
                HasSubstr("Does not recognise a lock that names the process alone"));
}

TEST_F(Ports, MayHaveALockThatNamesNobody)
{
    add_adapter();
    for (const char* content : {"", "no number", "-1\n"}) {
        lock(content);
        EXPECT_THAT(codes(report()), ElementsAre("S006")) << content;
        EXPECT_TRUE(only_port()
                        .value(QStringLiteral("locks"))
                        .toArray()
                        .at(0)[QStringLiteral("pid")]
                        .isNull());
    }
}

TEST_F(Ports, HaveAStaleLockWhenItsProcessHasEnded)
{
    add_adapter();
    lock("4711\nzserial\nhost\nmachine\nthis-boot\n");
    const QJsonObject found = report();
    EXPECT_THAT(codes(found), ElementsAre("S007"));
    EXPECT_THAT(message_of(found, "S007"),
                HasSubstr("LCK..ttyUSB0 names process 4711 (zserial), which has ended."));
}

TEST_F(Ports, HaveAStaleLockWhenAnotherProcessHasTheNumberNow)
{
    add_adapter();
    m_system.add_process(4711, "bash");
    lock("4711\nzserial\nhost\nmachine\nthis-boot\n");
    EXPECT_THAT(codes(report()), ElementsAre("S007"));
    m_system.add_process(4711, "zserial");
    lock("4711\nzserial\nhost\nmachine\nan-earlier-boot\n");
    EXPECT_THAT(codes(report()), ElementsAre("S007"));
}

TEST_F(Ports, MayBeLockedUnderTheirStableName)
{
    add_adapter();
    m_system.put(QStringLiteral("locks/LCK..serial_by-id_usb-FTDI_FT232R_A50285BI-if00-port0"),
                 "4711\n");
    EXPECT_THAT(codes(report()), ElementsAre("S007"));
}

TEST_F(Ports, CannotBeOpenedWithoutAFolderForLocks)
{
    add_adapter();
    ASSERT_TRUE(QDir(m_system.path(QStringLiteral("locks"))).removeRecursively());
    EXPECT_THAT(codes(report()), ElementsAre("S008"));
}

TEST_F(Ports, MayHoldAnswersBack)
{
    add_adapter();
    m_system.put(QStringLiteral("sys/bus/usb-serial/devices/ttyUSB0/latency_timer"), "16\n");
    const QJsonObject found = report();
    EXPECT_THAT(codes(found), ElementsAre("S009"));
    EXPECT_EQ(message_of(found, "S009"), "Its latency timer is 16 ms.");
    EXPECT_THAT(message_of(found, "S009", "remedy"),
                HasSubstr("/bus/usb-serial/devices/ttyUSB0/latency_timer"));
}

TEST_F(Ports, MayBeProbedByAService)
{
    add_adapter();
    m_system.add_process(600, "ModemManager");
    EXPECT_THAT(codes(report()), ElementsAre("S010"));
}

TEST_F(Ports, AreLeftAloneWhereARuleSaysSo)
{
    add_adapter();
    m_system.add_process(600, "ModemManager");
    for (const char* device : {"udev/c188:0", "udev/c189:3"}) {
        const QString file = QLatin1String(device);
        m_system.put(file, "I:123\nE:ID_MM_DEVICE_IGNORE=1\n");
        EXPECT_THAT(codes(report()), IsEmpty()) << device;
        ASSERT_TRUE(QFile::remove(m_system.path(file)));
    }
}

TEST_F(Ports, OfTheMachineItselfAreNotProbed)
{
    m_system.add_built_in_port(QStringLiteral("ttyS0"), "4\n");
    m_system.add_process(600, "ModemManager");
    EXPECT_THAT(codes(report()), IsEmpty());
}

TEST_F(Ports, MayBeTakenByABrailleService)
{
    m_system.add_process(600, "brltty");
    EXPECT_THAT(codes(report()), ElementsAre("S002", "S011"));
}

TEST_F(Ports, AreShownWithoutADeviceFileAndWithALockOfNobody)
{
    m_system.add_built_in_port(QStringLiteral("ttyS0"), "4\n");
    ASSERT_TRUE(QFile::remove(m_system.path(QStringLiteral("dev/ttyS0"))));
    m_system.put(QStringLiteral("locks/LCK..ttyS0"), "nobody");
    const std::string text = inspect_run(words()).out.simplified().toStdString();
    EXPECT_THAT(text, HasSubstr("there is no such file"));
    EXPECT_THAT(text, HasSubstr("/locks/LCK..ttyS0, which names no process"));
}

/// Where lines are broken depends on the folder of the test and the names of its user.
TEST_F(Ports, AreShownAsText)
{
    add_adapter();
    m_system.add_process(4711, "minicom");
    m_system.add_process(600, "ModemManager");
    m_system.link(QStringLiteral("proc/4711/fd/3"), QStringLiteral("/dev/ttyUSB0"));
    m_system.put(QStringLiteral("sys/bus/usb-serial/devices/ttyUSB0/latency_timer"), "16\n");
    lock("4712\nzserial\nhost\nmachine\nthis-boot\n");
    QFile file(QStringLiteral("tests/inspect/data/ports.txt"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QFileInfo port(m_system.path(QStringLiteral("dev/ttyUSB0")));
    QByteArray expected = file.readAll();
    expected.replace("OWNER", port.owner().toLocal8Bit());
    expected.replace("GROUP", port.group().toLocal8Bit());
    QByteArray text = inspect_run(words({QStringLiteral("--user"), QStringLiteral("nobody")})).out;
    text.replace(m_system.path(QString()).toLocal8Bit(), "");
    EXPECT_EQ(text.simplified().toStdString(), expected.simplified().toStdString());
}

TEST_F(Ports, FitTheSchema)
{
    add_adapter();
    m_system.add_built_in_port(QStringLiteral("ttyS0"), "4\n");
    m_system.add_process(4711, "minicom");
    m_system.link(QStringLiteral("proc/4711/fd/3"), QStringLiteral("/dev/ttyUSB0"));
    lock("4712\n");
    QJsonArray reports = {report(), inspect_json({QStringLiteral("ports")})};
    lock("nobody");
    ASSERT_TRUE(QFile::remove(m_system.path(QStringLiteral("dev/ttyS0"))));
    reports.append(report());
    const ProcessResult result = run_process(QStringLiteral(PYTHON),
                                             {QStringLiteral("tests/inspect/check_schema.py"),
                                              QStringLiteral("inspect/schema/ports.schema.json")},
                                             QJsonDocument(reports).toJson());
    EXPECT_EQ(result.status, 0) << result.out.constData() << result.err.constData();
}

TEST_F(Ports, AreJudgedForAUserThatExists)
{
    const inspect::Outcome outcome =
        inspect_run(words({QStringLiteral("--user"), QStringLiteral("no such user")}));
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.err.toStdString(), "zserial-inspect: there is no user no such user\n");
}

/// True with and without ports, as any user.
TEST(PortsOfThisMachine, AreThoseThatThePortLibraryFinds)
{
    const QJsonObject report = inspect_json({QStringLiteral("ports")});
    std::vector<std::string> names;
    for (const QJsonValue port : report[QStringLiteral("ports")].toArray()) {
        const QString path = port[QStringLiteral("path")].toString();
        EXPECT_EQ(port[QStringLiteral("access")].isNull(), !QFileInfo::exists(path))
            << path.toStdString();
        names.push_back(port[QStringLiteral("name")].toString().toStdString());
    }
    for (const QSerialPortInfo& port : QSerialPortInfo::availablePorts()) {
        EXPECT_THAT(names, Contains(port.portName().toStdString()));
    }
    EXPECT_EQ(report[QStringLiteral("user")].toString(), inspect::current_user().name);
}
