#include "tests/gang/GangTest.h"
#include "tests/support/RowName.h"

#include <QDir>
#include <QFile>

#include <unistd.h>

using namespace test;

namespace
{

/// Arguments that a gang refuses, and the reason that it gives.
struct RefusalCase {
    const char* name;
    const char* arguments;
    const char* reason;
};

std::ostream& operator<<(std::ostream& stream, const RefusalCase& row)
{
    return stream << row.arguments;
}

class GangRefusal : public GangTest, public testing::WithParamInterface<RefusalCase>
{
protected:
    void put_images() const
    {
        const QByteArray image = file(QStringLiteral("image.hex"));
        put_file(QStringLiteral("joined.hex"), image + image);
        put_file(QStringLiteral("cut.hex"), image.left(image.lastIndexOf(':')));
        give_file("elsewhere.hex", QStringLiteral("elsewhere.hex"));
        const int end = image.lastIndexOf(':');
        put_file(QStringLiteral("partly.hex"),
                 image.left(end) + file(QStringLiteral("elsewhere.hex")));
    }

    /// Creates links by which two ports, a and b, would write to one file.
    void put_links() const
    {
        ASSERT_TRUE(QDir(folder()).mkdir(QStringLiteral("a")));
        ASSERT_TRUE(QFile::link(QStringLiteral("a"), path(QStringLiteral("b"))));
        ASSERT_TRUE(QFile::link(QStringLiteral("c.log"), path(QStringLiteral("a.log"))));
        ASSERT_TRUE(QFile::link(QStringLiteral("c.log"), path(QStringLiteral("b.log"))));
        put_file(QStringLiteral("a.hex"), {});
        ASSERT_EQ(::link(QFile::encodeName(path(QStringLiteral("a.hex"))).constData(),
                         QFile::encodeName(path(QStringLiteral("b.hex"))).constData()),
                  0);
    }
};

TEST_P(GangRefusal, StartsNothing)
{
    give_file("empty.hex", QStringLiteral("empty.hex"));
    give_file("bad_checksum.hex", QStringLiteral("bad_checksum.hex"));
    give_file("bad_device.txt", QStringLiteral("bad_device.txt"));
    put_file(QStringLiteral("numbers"), "70000\n");
    put_images();
    put_links();
    const GangResult result =
        run(words("--json --record record.jsonl") + words(GetParam().arguments));
    EXPECT_EQ(result.status, 2) << result;
    EXPECT_EQ(result.out.toStdString(), "");
    EXPECT_THAT(result.err.toStdString(), testing::HasSubstr(GetParam().reason));
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("missing.hex"))));
}

const std::vector<RefusalCase> refusal_cases = {
    {"Nothing", "", "name either ports or, with --watch, a pattern for them"},
    {"NoArguments", "/dev/a", "the arguments of zserial are missing; write them after --"},
    {"EmptyArguments", "/dev/a --", "the arguments of zserial are missing; write them after --"},
    {"PortsAndPattern", "/dev/a --watch /dev/b* -- -e",
     "name either ports or, with --watch, a pattern for them"},
    {"UnknownOption", "--quick /dev/a -- -e", "Unknown option 'quick'"},
    {"Jobs", "--jobs 0 /dev/a -- -e", "--jobs must be a number from 1 to 1000"},
    {"JobsNotWhole", "--jobs 1.5 /dev/a -- -e", "--jobs must be a whole number"},
    {"Tries", "--tries many /dev/a -- -e", "--tries must be a number from 1 to 1000"},
    {"Limit", "--limit nan /dev/a -- -e", "--limit must be a number"},
    {"KeepWithoutAFolder", "--keep= /dev/a -- -e", "--keep needs a value"},
    {"SamePortTwice", "/dev/null /dev/../dev/null -- -e", "are the same port"},
    {"SamePortWithAndWithoutItsFolder", "/dev/null null -- -e", "are the same port"},
    {"PortAmongTheArguments", "/dev/a -- -s /dev/b", "not with -s"},
    {"RefusedByTheTool", "/dev/a -- -e -e", "You specified '-e' more than once."},
    {"WordPassedOver", "/dev/a -- -vw image.hex",
     "zserial ignores the word \"-vw\", which is not an option"},
    {"VersionRequest", "/dev/a -- -V -e", "with -V but without -B, every run fails: leave out -V"},
    {"WithForceOrNotAtAll", "/dev/a -- -vw image.hex",
     "not started because of these problems; --force starts anyway"},
    {"ImageNamedAfterThePort", "--watch /dev/x* -- -w {name}.hex",
     "with --watch, the name of an image must not depend on the port"},
    {"OneFileForTwoPorts", "/dev/a /dev/b -- -r out.hex",
     "would be written for /dev/a and for /dev/b"},
    {"OneLogForTwoPorts", "/dev/a /dev/b -- -e -x out.log",
     "would be written for /dev/a and for /dev/b"},
    {"OneFileByTwoNames", "/dev/a /dev/b -- -r {name}.hex", "would be written for /dev/a and"},
    {"OneFileByTwoLinks", "/dev/a /dev/b -- -e -x {name}.log", "would be written for /dev/a and"},
    {"OneFolderByTwoNames", "/dev/a /dev/b -- -r {name}/out.hex",
     "would be written for /dev/a and"},
    {"OneNameInManyFolders", "--watch /x/*/tty -- -r {name}.hex",
     "would be written for /x/1/tty and for /x/2/tty"},
    {"ImagesOfTheirOwnForAllThatAppear", "--watch /dev/x* -- -w {name}.hex",
     "with --watch, the name of an image must not depend on the port"},
    {"OneFileForAllThatAppear", "--watch /dev/x* -- -r out.hex", "would be written for"},
    {"ReadOverTheImage", "/dev/a -- -w image.hex -r image.hex",
     "image.hex is an image and would be overwritten"},
    {"ReadOverTheTableOfAPortThatMayAppear", "--watch /dev/x -- -r device.txt",
     "is the table and would be overwritten"},
    {"ReadOverTheTable", "/dev/a -- -r device.txt", "is the table and would be overwritten"},
    {"ReadOverTheRecord", "/dev/a -- -r record.jsonl", "is the record and would be overwritten"},
    {"MissingImage", "/dev/a -- -w missing.hex", "missing.hex: No such file or directory"},
    {"MissingImageByForce", "--force /dev/a -- -w missing.hex",
     "missing.hex: No such file or directory"},
    {"EmptyImage", "--force /dev/a -- -w empty.hex", "empty.hex: An image without data (I002)"},
    {"BadImage", "/dev/a -- -w bad_checksum.hex", "(I005): The record that begins in column 1"},
    {"ImageInTwoParts", "/dev/a -- -w joined.hex",
     "joined.hex, line 9: Records after the end record (I012)"},
    {"ImageWithoutEnd", "/dev/a -- -w cut.hex", "No end record (I013)"},
    {"ImageOfAnotherDevice", "/dev/a -- -B 0102 -w elsewhere.hex",
     "elsewhere.hex: the image holds nothing for this device"},
    {"ImagePartlyOutside", "--expect 0102 /dev/a -- -w partly.hex",
     "Bytes outside the device (I019): TWIN: 16 bytes outside the device"},
    {"ImageToVerifyPartlyOutside", "/dev/a -- -B 0102 -e -v partly.hex", "(I019)"},
    {"ImageOfNoDevice", "/dev/a -- -w partly.hex",
     "partly.hex: does not fit into any device of the table"},
    {"NoTable", "--table none.txt /dev/a -- -e", "none.txt: No such file or directory"},
    {"BadTable", "--table bad_device.txt /dev/a -- -e",
     "(T005): bootloader_end_address is \"forty\"."},
    {"BadTableWhateverTheVersion", "--table bad_device.txt /dev/a -- -B 0102 -e", "(T005)"},
    {"ExpectedVersionNotInTheTable", "--expect 0999 /dev/a -- -e",
     "has no usable row for version 0x0999"},
    {"ExpectedVersionNoVersion", "--expect 12345 /dev/a -- -e",
     "--expect: '12345' is not a bootloader version"},
    {"ExpectedVersionNotAsked", "--expect 0102 /dev/a -- -B 0102 -e",
     "--expect and -B exclude each other"},
    {"NothingToCertify", "--certify /dev/a -- -e", "--certify needs -w, -W or -wv"},
    {"PartOfASerialNumber", "--serial-at 0xE0 /dev/a -- -wv image.hex", "together"},
    {"SerialNumberWithoutImage",
     "--serial-at 0xE0 --serial-size 4 --serial-file numbers /dev/a -- -e",
     "serial numbers need -w, -W or -wv"},
    {"SerialNumberAtNoAddress",
     "--serial-at E0h --serial-size 4 --serial-file numbers /dev/a -- -wv image.hex",
     "--serial-at: 'E0h' is not an address such as 0x1F00"},
    {"SerialNumberBeyondTheLastAddress",
     "--serial-at 0xFFFFFFFE --serial-size 4 --serial-file numbers /dev/a -- -wv image.hex",
     "the serial number would reach beyond address 0xFFFFFFFF"},
    {"SerialNumberInABadImage",
     "--serial-at 0xE0 --serial-size 4 --serial-file numbers /dev/a -- -wv bad_checksum.hex",
     "bad_checksum.hex: cannot be read as an Intel HEX file"},
    {"SerialNumberInAnAreaLeftOut",
     "--serial-at 0xE0 --serial-size 4 --serial-file numbers /dev/a -- -B 0102 -xe -w image.hex",
     "image.hex: the serial number lies outside what is written to this device"},
    {"SerialNumberOutside",
     "--serial-at 0x180 --serial-size 4 --serial-file numbers /dev/a -- -wv image.hex",
     "lie outside the image; let it hold FF there"},
    {"SerialNumberOverData",
     "--serial-at 0xA0 --serial-size 4 --serial-file numbers /dev/a -- -wv image.hex",
     "already hold data of the image: 00 01 02 03"},
    {"SerialNumberTooLarge",
     "--serial-at 0xE0 --serial-size 2 --serial-file numbers /dev/a -- -wv image.hex",
     "the serial number 70000 does not fit into 2 bytes"},
    {"SerialNumberTooLong",
     "--serial-at 0xE0 --serial-size 4 --serial-format text --serial-file numbers /dev/a -- -wv "
     "image.hex",
     "the serial number 70000 does not fit into 4 bytes"},
    {"SerialNumberSize",
     "--serial-at 0xE0 --serial-size 9 --serial-file numbers /dev/a -- -wv image.hex",
     "--serial-size must be a number from 1 to 8"},
    {"SerialNumberAddress",
     "--serial-at top --serial-size 4 --serial-file numbers /dev/a -- -wv image.hex",
     "--serial-at: 'top' is not an address such as 0x1F00"},
    {"SerialNumberBeyondAllAddresses",
     "--serial-at 0xFFFFFFFE --serial-size 4 --serial-file numbers /dev/a -- -wv image.hex",
     "the serial number would reach beyond address 0xFFFFFFFF"},
    {"SerialNumberFormat",
     "--serial-at 0xE0 --serial-size 4 --serial-format bcd --serial-file numbers /dev/a -- -wv "
     "image.hex",
     "--serial-format must be little, big or text, not 'bcd'"},
    {"NoCounter", "--serial-at 0xE0 --serial-size 4 --serial-file none /dev/a -- -wv image.hex",
     "none: No such file or directory"},
    {"KeepFailuresOfNothing", "--keep-failures /dev/a -- -e", "--keep-failures needs --keep"},
    {"NowhereToKeep", "--keep image.hex/logs /dev/a -- -e",
     "--keep: cannot write to the folder image.hex/logs"},
    {"NowhereToRecord", "--record no/such/folder /dev/a -- -e",
     "no/such/folder: No such file or directory"},
    {"NoTool", "--zserial /no/such/zserial /dev/a -- -e",
     "--zserial: there is no executable file /no/such/zserial"},
};

INSTANTIATE_TEST_SUITE_P(Gang, GangRefusal, testing::ValuesIn(refusal_cases), row_name);

} // namespace
