#include "memory/MemoryMap.h"
#include "profile/Profiles.h"
#include "sim/device/SimulatedDevice.h"
#include "upload.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace
{

constexpr unsigned int address = 0x1000;
const QByteArray firmware(0x300, '\x5A');

class Upload : public testing::Test
{
protected:
    void SetUp() override
    {
        MemoryMap map(MemoryMap::default_chunk_size);
        map.write(address, firmware);
        ASSERT_TRUE(map.save_to_hex_file(image));
    }

    QTemporaryDir folder;
    const QString image = folder.filePath(QStringLiteral("firmware.hex"));
    sim::SimulatedDevice device{*Profiles::get_profile(0x0110)};
};

TEST_F(Upload, PutsTheFirmwareIntoTheDevice)
{
    EXPECT_EQ(upload(device.port_path(), image), std::nullopt);
    EXPECT_EQ(device.memory().read(address, 0x300), firmware);
}

TEST_F(Upload, SurvivesALostAnswer)
{
    device.set_reply_filter([](const sim::Command& command, const QByteArray& answer) {
        const bool is_lost = command.sequence == 3;
        return is_lost ? std::vector<sim::Delivery>() : std::vector<sim::Delivery>{{answer}};
    });
    EXPECT_EQ(upload(device.port_path(), image), std::nullopt);
    EXPECT_EQ(device.memory().read(address, 0x300), firmware);
}

TEST_F(Upload, ReportsFlashThatIsWornOut)
{
    const unsigned int worn = address + 0x80;
    ASSERT_TRUE(device.memory().stick_bits(worn, 0x01, true));
    EXPECT_EQ(upload(device.port_path(), image).value_or(QString()),
              QStringLiteral("Row verify failure at address 0x00001080"));
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
