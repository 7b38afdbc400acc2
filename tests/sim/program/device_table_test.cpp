#include "sim/device/Error.h"
#include "sim/program/DeviceTable.h"
#include "tests/sim/SampleDevice.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace test;
using sim::DeviceTable;
using sim::Error;

namespace
{

QString row(const char* version, const char* name, const Changes& changes = {})
{
    QStringList fields = sample_fields(changes);
    fields[Profile::bootloader_version] = QString::fromLatin1(version);
    fields[Profile::device_name] = QString::fromLatin1(name);
    return fields.join(QLatin1Char('\t'));
}

class SimDeviceTable : public testing::Test
{
protected:
    SimDeviceTable() : path(folder.filePath(QStringLiteral("device.txt"))) {}

    DeviceTable table_of(const QStringList& lines) const
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(lines.join(QLatin1Char('\n')).toUtf8());
        file.close();
        return DeviceTable(path);
    }

    /// The error about the table, with its path shortened to "T".
    std::string complaint_about(const std::function<void()>& action) const
    {
        try {
            action();
        } catch (const Error& error) {
            return QString::fromUtf8(error.what()).replace(path, QStringLiteral("T")).toStdString();
        }
        return "nothing thrown";
    }

    QTemporaryDir folder;
    QString path;
};

} // namespace

TEST_F(SimDeviceTable, ListsItsDevicesByVersion)
{
    const DeviceTable table = table_of({QStringLiteral("a remark"), row("v0203:", "SECOND"),
                                        row("v0102:", "FIRST"), row("v0203:", "REPLACED")});
    const QStringList expected = {QStringLiteral("0102 FIRST"), QStringLiteral("0203 REPLACED")};
    EXPECT_EQ(table.listing(), expected);
}

TEST_F(SimDeviceTable, ChoosesTheOnlyDeviceByItself)
{
    EXPECT_EQ(table_of({row("v0102:", "ONLY")}).choose(std::nullopt).name, QStringLiteral("ONLY"));
}

TEST_F(SimDeviceTable, ChoosesByVersion)
{
    const DeviceTable table = table_of({row("v0102:", "FIRST"), row("v0203:", "SECOND")});
    EXPECT_EQ(table.choose(0x0203).name, QStringLiteral("SECOND"));
}

TEST_F(SimDeviceTable, AsksForAChoiceAmongSeveral)
{
    const DeviceTable table = table_of({row("v0102:", "FIRST"), row("v0203:", "SECOND")});
    EXPECT_EQ(complaint_about([&table] { table.choose(std::nullopt); }),
              "the table T has several devices: choose one with --device (--list shows them)");
}

TEST_F(SimDeviceTable, HasNoDeviceOfAnotherVersion)
{
    const DeviceTable table = table_of({row("v0102:", "FIRST")});
    EXPECT_EQ(complaint_about([&table] { table.choose(0x00AB); }),
              "the table T has no device with version 00AB");
}

TEST_F(SimDeviceTable, MayHaveNoDevices)
{
    const DeviceTable table = table_of({});
    EXPECT_EQ(table.listing(), QStringList());
    EXPECT_EQ(complaint_about([&table] { table.choose(std::nullopt); }),
              "the table T has no devices");
}

TEST_F(SimDeviceTable, IsRefusedWhenItIsMissingOrBad)
{
    EXPECT_EQ(complaint_about([this] { DeviceTable table(path); }),
              "cannot read the table T: No such file or directory");
    EXPECT_EQ(complaint_about([this] { table_of({row("0102", "NO VERSION")}); }),
              "the table T has a row that does not begin with a version");
    EXPECT_EQ(complaint_about([this] {
                  table_of({row("v0102:", "BAD", {{Profile::max_baud, "fast"}})});
              }),
              "the table T has a bad row for version 0x0102");
}
