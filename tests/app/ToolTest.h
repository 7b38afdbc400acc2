#pragma once

#include "sim/device/SimulatedDevice.h"
#include "sim/program/DeviceTable.h"
#include "tests/app/Words.h"
#include "tests/support/ToolRun.h"

#include <QByteArray>
#include <QStringList>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace test
{

/// The bytes of a file of tests/app/data.
QByteArray test_data(const char* file_name);

/// The frame of a payload that begins with `header`, given in hexadecimal.
QByteArray frame(const char* header, const QByteArray& data = {});

/// Replaces the answers to the first commands by these replies, in order; later answers pass
/// unchanged.
void script_replies(sim::SimulatedDevice& device,
                    const std::vector<std::vector<sim::Delivery>>& replies);

/// Every byte that the device has received, in hexadecimal.
std::string heard_by(const sim::SimulatedDevice& device);

/// The payloads of the frames that the device has received, in hexadecimal.
std::vector<std::string> commands_of(const sim::SimulatedDevice& device);

/// The lock files on a port, wherever they are kept.
QStringList locks_on(const QString& port);

/// The tool's message about a port that does not exist.
QByteArray cannot_open(const QString& port);

/// The last line of a run that succeeds.
extern const char* const success;

/// Runs the tool on a simulated device. The tool's folder holds the table of tests/app/data.
class ToolTest : public testing::Test
{
protected:
    ToolTest();

    const Profile& twin() const { return m_table.choose(0x0102); }

    const Profile& solo() const { return m_table.choose(0x0203); }

    const Profile& mite() const { return m_table.choose(0x0304); }

    /// Copies a file of tests/app/data to the tool's folder.
    void give_file(const char* file_name);
    /// Runs the tool on the device's port.
    ToolResult run(const sim::SimulatedDevice& device, const char* arguments) const;

    ToolRun m_tool;

private:
    sim::DeviceTable m_table;
};

} // namespace test
