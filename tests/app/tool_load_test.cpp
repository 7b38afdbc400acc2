#include "tests/app/QuadTest.h"
#include "tests/support/Bytes.h"

#include <algorithm>
#include <memory>

using namespace test;

namespace
{

constexpr int device_count = 32;

/// As many devices as a rack holds, each with an image of its own and a run of the tool to itself.
/// With this many runs at once, answers may be late because a run waits for the processor. If all
/// acknowledgements are the same, that only costs time, so images hold only flash and nothing is
/// erased.
class ToolLoad : public QuadTest
{
protected:
    ToolLoad()
    {
        for (int i = 0; i < device_count; ++i) {
            m_devices.push_back(
                std::make_unique<sim::SimulatedDevice>(quad(), sim::Options{sim::Entry::Version}));
            put_image(image_name(i).constData(), {{0x40, flash_of(i)}});
        }
    }

    static QByteArray image_name(int i) { return "image" + QByteArray::number(i) + ".hex"; }

    static QByteArray flash_of(int i) { return counting(0x100, i); }

    std::unique_ptr<RunningTool> program(int i) const
    {
        const QString image = QString::fromLatin1(image_name(i));
        return m_tool.start(words("-B 0708 -w") + QStringList{image, QStringLiteral("-v"), image,
                                                              QStringLiteral("-s"),
                                                              device(i).port_path()});
    }

    const sim::SimulatedDevice& device(int i) const
    {
        return *m_devices[static_cast<std::size_t>(i)];
    }

    /// Programs the devices from `first` up to `last` at once.
    void program_and_check(int first, int last) const
    {
        std::vector<std::unique_ptr<RunningTool>> runs;
        runs.reserve(static_cast<std::size_t>(last - first));
        for (int i = first; i < last; ++i) {
            runs.push_back(program(i));
        }
        for (int i = first; i < last; ++i) {
            SCOPED_TRACE(i);
            const ToolResult result = runs[static_cast<std::size_t>(i - first)]->result();
            EXPECT_EQ(result.status, 0) << result;
            EXPECT_FALSE(result.crashed);
            EXPECT_EQ(small_digits(device(i).memory().read(0x40, 0x100)),
                      small_digits(flash_of(i)));
        }
    }

    std::vector<std::unique_ptr<sim::SimulatedDevice>> m_devices;
};

} // namespace

TEST_F(ToolLoad, OfManyDevicesAtOnceLeavesEachWithItsOwnImage)
{
    const int at_once =
        static_cast<int>(std::min<std::size_t>(ToolRun::most_at_once(), device_count));
    for (int first = 0; first < device_count; first += at_once) {
        program_and_check(first, std::min(first + at_once, device_count));
    }
}
