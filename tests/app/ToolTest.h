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

/// Takes these replies to the commands in order; answers to commands that follow pass as they are.
void script_replies(sim::SimulatedDevice& device,
                    const std::vector<std::vector<sim::Delivery>>& replies);

/// Every byte that the device has heard, in hexadecimal.
std::string heard_by(const sim::SimulatedDevice& device);

/// The payloads of the framed commands that the device has heard, in hexadecimal.
std::vector<std::string> commands_of(const sim::SimulatedDevice& device);

/// The lock files on a port, wherever they are kept.
QStringList locks_on(const QString& port);

/// What the tool says about a port that is not there.
QByteArray cannot_open(const QString& port);

/// What a run prints whose version was given and whose operations all went well.
extern const char* const success;

/// Runs the tool beside a simulated device. The tool's folder holds the table of tests/app/data.
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
