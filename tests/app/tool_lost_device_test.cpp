#include "tests/app/LostDevice.h"
#include "tests/app/OperationSteps.h"
#include "tests/support/Waiting.h"

#include <algorithm>
#include <memory>

using namespace test;

// The device is lost at every command of every operation; then the same run is made again on what
// is left of it. A lost command costs twelve seconds, so many runs wait at the same time.

namespace
{

constexpr unsigned int flash_start = 0x40;
constexpr unsigned int flash_size = 0x100;
constexpr unsigned int eeprom_start = 0x1000;
constexpr unsigned int eeprom_size = 0x20;

/// All that a host can write of QUAD.
QByteArray contents(const sim::DeviceMemory& memory)
{
    return memory.read(flash_start, flash_size) + memory.read(eeprom_start, eeprom_size);
}

void put(QByteArray& contents, const Piece& piece)
{
    const unsigned int place = piece.address < eeprom_start
                                   ? piece.address - flash_start
                                   : flash_size + piece.address - eeprom_start;
    contents.replace(static_cast<int>(place), piece.bytes.size(), piece.bytes);
}

const char* name_of(Loss loss)
{
    switch (loss.moment) {
    case Loss::Moment::Unheard:
        return "unheard";
    case Loss::Moment::Undone:
        return "undone";
    case Loss::Moment::Unanswered:
        return "unanswered";
    case Loss::Moment::HalfAnswered:
        return "half answered";
    case Loss::Moment::Repeated:
        break;
    }
    return "repeated";
}

/// How a run begins.
enum class Begin { Entry, VersionGiven };

/// An operation and a reset on a device that is lost, and again on the same device.
class Trial
{
public:
    Trial(const Profile& quad, Operation operation, Begin begin, Loss loss)
        : m_quad(quad),
          m_operation(std::move(operation)),
          m_begin(begin),
          m_loss(loss)
    {
        m_tool.put_file(QStringLiteral("device.txt"), test_data("quad_device.txt"));
        m_tool.put_file(QStringLiteral("image.hex"), operations_image());
        m_tool.put_file(QStringLiteral("out.hex"), "kept");
        plug_in(loss);
        for (const Piece& piece : m_operation.before) {
            m_device->memory().preset(piece.address, piece.bytes);
        }
    }

    void start()
    {
        const char* version = m_begin == Begin::VersionGiven ? "-B 0708 -R " : "-R ";
        m_run = m_tool.start(QStringList{QStringLiteral("-s"), m_device->port_path()} +
                             words(QByteArray(version) + m_operation.arguments));
        // One after the other: many that probe at once leave each other no processor time.
        EXPECT_TRUE(wait_until([this] { return m_device->has_heard_anything(); }));
    }

    void check_loss()
    {
        SCOPED_TRACE(testing::Message() << m_operation.name << ", command " << m_loss.command << ' '
                                        << name_of(m_loss));
        const ToolResult result = m_run->result();
        EXPECT_EQ(result,
                  is_lost_at_reset() ? exited(0, good_output()) : exited(1, output_of_loss()));
        EXPECT_EQ(m_device->commands(), commands_until_loss());
        EXPECT_EQ(contents(m_device->memory()), contents_after(steps_done()));
        check_files(is_lost_at_reset());
    }

    /// The device gets its power back, or its line.
    void restart()
    {
        const auto remains = m_device->memory().programmed_ranges();
        plug_in({});
        for (const auto& range : remains) {
            m_device->memory().preset(range.address, range.bytes);
        }
        start();
    }

    /// Pages that a write-and-verify finds up to date change its progress, and nothing else.
    void check_recovery()
    {
        SCOPED_TRACE(testing::Message() << m_operation.name << " again, after command "
                                        << m_loss.command << ' ' << name_of(m_loss));
        const ToolResult result = m_run->result();
        EXPECT_EQ(result.status, 0) << result;
        EXPECT_TRUE(result.out.endsWith(good_end())) << result;
        EXPECT_EQ(m_device->commands().back(), reset);
        EXPECT_EQ(contents(m_device->memory()), contents_after(m_operation.steps.size()));
        check_files(true);
    }

private:
    void plug_in(Loss loss)
    {
        const sim::Entry entry = m_begin == Begin::Entry ? sim::Entry::Probe : sim::Entry::Version;
        m_device = std::make_unique<LostDevice>(m_quad, entry, loss);
    }

    bool is_lost_at_probe() const { return m_begin == Begin::Entry && m_loss.command == 1; }

    /// Of the command at which the device is lost; after the last one for the reset.
    std::size_t step_lost() const { return m_loss.command - (m_begin == Begin::Entry ? 2 : 1); }

    bool is_lost_at_reset() const
    {
        return !is_lost_at_probe() && step_lost() == m_operation.steps.size();
    }

    std::size_t steps_done() const
    {
        const bool done = m_loss.moment == Loss::Moment::Unanswered ||
                          m_loss.moment == Loss::Moment::HalfAnswered;
        return is_lost_at_probe()
                   ? 0
                   : std::min(step_lost() + (done ? 1 : 0), m_operation.steps.size());
    }

    QByteArray output_of_loss() const
    {
        if (is_lost_at_probe()) {
            const QByteArray reason = m_loss.of == Loss::Of::Line
                                          ? cannot_open(m_device->port_path())
                                          : given_up_on_silence(3).repeated(5);
            return reason + "Did not succeed in QV entry procedure, aborting...";
        }
        return output(progress_of(step_lost()) + given_up_on_silence() +
                          m_operation.steps[step_lost()].failure,
                      m_operation.failed);
    }

    QByteArray good_output() const
    {
        return output(progress_of(m_operation.steps.size()), good_end());
    }

    QByteArray good_end() const { return m_operation.done + "Resetting device\n" + success; }

    QByteArray progress_of(std::size_t steps) const
    {
        QByteArray text = m_operation.first_progress;
        for (std::size_t i = 0; i < steps; ++i) {
            text += m_operation.steps[i].progress;
        }
        return text;
    }

    /// What is printed during the operation comes at once, the rest where it is flushed or at the
    /// end.
    QByteArray output(const QByteArray& during, const QByteArray& end) const
    {
        const QByteArray version =
            m_begin == Begin::Entry ? "Retrieved version number during QV entry procedure: 0x0708\n"
                                    : "Version set to 0x0708 successfully!";
        if (m_operation.shows_begin_at_once) {
            return version + m_operation.begun + during + "\n" + end;
        }
        return m_begin == Begin::Entry ? during + version + m_operation.begun + end
                                       : version + during + m_operation.begun + end;
    }

    Commands commands_until_loss() const
    {
        Commands commands;
        if (is_lost_at_probe()) {
            return commands;
        }
        for (std::size_t i = 0; i < step_lost(); ++i) {
            commands.push_back(m_operation.steps[i].command);
        }
        const bool has_power = m_loss.of == Loss::Of::Line;
        if (m_loss.moment != Loss::Moment::Unheard) {
            commands.emplace_back(is_lost_at_reset() ? reset
                                                     : m_operation.steps[step_lost()].command);
        }
        return has_power || is_lost_at_reset()
                   ? commands
                   : commands + m_operation.steps[step_lost()].aftermath;
    }

    QByteArray contents_after(std::size_t steps) const
    {
        QByteArray contents(flash_size + eeprom_size, '\xFF');
        for (const Piece& piece : m_operation.before) {
            put(contents, piece);
        }
        for (std::size_t i = 0; i < steps; ++i) {
            if (!m_operation.steps[i].effect.bytes.isEmpty()) {
                put(contents, m_operation.steps[i].effect);
            }
        }
        return contents;
    }

    /// A file that is read into is written when everything has been read.
    void check_files(bool is_read) const
    {
        const bool is_saved = is_read && !m_operation.saved.empty();
        EXPECT_EQ(m_tool.file(QStringLiteral("out.hex")).toStdString(),
                  is_saved ? saved_file(m_operation.saved) : "kept");
        EXPECT_EQ(m_tool.files().join(QLatin1Char(' ')).toStdString(),
                  "device.txt image.hex out.hex");
    }

    const Profile& m_quad;
    Operation m_operation;
    Begin m_begin;
    Loss m_loss;
    ToolRun m_tool;
    std::unique_ptr<LostDevice> m_device;
    std::unique_ptr<RunningTool> m_run;
};

class ToolLostDevice : public testing::Test
{
protected:
    /// One trial for each command that `operation` and a reset take, from the `first` on.
    void add(const Operation& operation, Begin begin, Loss loss, std::size_t first = 1)
    {
        const std::size_t commands = operation.steps.size() + (begin == Begin::Entry ? 2 : 1);
        for (loss.command = first; loss.command <= commands; ++loss.command) {
            m_trials.push_back(
                std::make_unique<Trial>(m_table.choose(0x0708), operation, begin, loss));
        }
    }

    /// The entry procedure is the same for all of them.
    void add_all_operations(Loss loss)
    {
        for (const Operation& operation : other_operations()) {
            add(operation, Begin::Entry, loss, 2);
        }
        add(write_and_verify(), Begin::Entry, loss);
    }

    void run()
    {
        ASSERT_FALSE(m_trials.empty());
        for (std::size_t i = 0; i < m_trials.size(); i += ToolRun::most_at_once()) {
            const auto begin = m_trials.begin() + static_cast<std::ptrdiff_t>(i);
            const std::size_t count = std::min(m_trials.size() - i, ToolRun::most_at_once());
            const auto end = begin + static_cast<std::ptrdiff_t>(count);
            std::for_each(begin, end, [](auto& trial) { trial->start(); });
            std::for_each(begin, end, [](auto& trial) {
                trial->check_loss();
                trial->restart();
            });
            std::for_each(begin, end, [](auto& trial) { trial->check_recovery(); });
        }
    }

private:
    sim::DeviceTable m_table{QStringLiteral(APP_TEST_DATA "/quad_device.txt")};
    std::vector<std::unique_ptr<Trial>> m_trials;
};

} // namespace

TEST_F(ToolLostDevice, ByLossOfPowerAtAnyCommandEndsTheRunAndTheNextOneRecovers)
{
    add_all_operations({Loss::Of::Power, Loss::Moment::Undone});
    run();
}

TEST_F(ToolLostDevice, WithItsLineAtAnyCommandEndsTheRunAndTheNextOneRecovers)
{
    add_all_operations({Loss::Of::Line, Loss::Moment::Undone});
    run();
}

TEST_F(ToolLostDevice, ByLossOfPowerAfterOrWithinAnAnswerEndsTheRunAndTheNextOneRecovers)
{
    for (const auto moment : {Loss::Moment::Unanswered, Loss::Moment::HalfAnswered}) {
        add(write_and_verify(), Begin::VersionGiven, {Loss::Of::Power, moment});
    }
    run();
}

TEST_F(ToolLostDevice, WithItsLineAroundOrWithinAnAnswerEndsTheRunAndTheNextOneRecovers)
{
    for (const auto moment :
         {Loss::Moment::Unheard, Loss::Moment::Unanswered, Loss::Moment::HalfAnswered}) {
        add(write_and_verify(), Begin::VersionGiven, {Loss::Of::Line, moment});
    }
    run();
}
