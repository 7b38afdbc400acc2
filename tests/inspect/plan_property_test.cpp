#include "sim/device/Names.h"
#include "sim/program/DeviceTable.h"
#include "sim/rig/MemoryImage.h"
#include "sim/rig/Rig.h"
#include "tests/device/RandomDevices.h"
#include "tests/support/ToolRun.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTimer>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <sstream>
#include <string>

// Command lines of all kinds on devices of all shapes: what is planned, beside what a simulated
// device counts when the tool is really run. Runs wait for most of their time, so many go on at
// once.

using namespace test;

namespace
{

constexpr int shards = 20;
constexpr int cases_per_shard = 25;

constexpr char probe = '\x55';

/// What a run comes to.
struct Account {
    std::map<std::string, unsigned int> commands;
    qint64 to_device = 0;
    qint64 from_device = 0;
    unsigned int pages_erased = 0;
    bool succeeds = false;

    bool operator==(const Account& other) const
    {
        return commands == other.commands && to_device == other.to_device &&
               from_device == other.from_device && pages_erased == other.pages_erased &&
               succeeds == other.succeeds;
    }
};

std::ostream& operator<<(std::ostream& stream, const Account& account)
{
    for (const auto& [kind, count] : account.commands) {
        stream << kind << ' ' << count << ", ";
    }
    return stream << account.to_device << " bytes to the device, " << account.from_device
                  << " from it, " << account.pages_erased << " pages erased, "
                  << (account.succeeds ? "succeeds" : "fails");
}

QString hex4(unsigned int value)
{
    return QStringLiteral("%1").arg(value, 4, 16, QLatin1Char('0'));
}

/// One in so many.
bool rarely(Random& random, unsigned int one_in)
{
    return random.below(one_in) == 0;
}

/// A command line with the device that it meets.
class Case
{
public:
    explicit Case(unsigned int seed) : m_random(seed), m_device(random_device(seed))
    {
        m_version = 0x1000 + m_random.below(rarely(m_random, 20) ? 0x100 : 0x80);
        put_table();
        put_image(QStringLiteral("image.hex"));
        put_image(QStringLiteral("other.hex"));
        put_before();
        choose_words();
    }

    QString text() const { return m_words.join(QLatin1Char(' ')); }

    std::unique_ptr<RunningTool> start_plan() const
    {
        QStringList words = {QStringLiteral("plan"), QStringLiteral("--json"),
                             QStringLiteral("--device"), hex4(m_version)};
        if (m_has_before) {
            words << QStringLiteral("--before") << QStringLiteral("before.hex");
        }
        return std::make_unique<RunningTool>(
            m_tool.path(QStringLiteral(".")), QStringLiteral(INSPECT_PROGRAM),
            words << QStringLiteral("--") << with_port(QStringLiteral("/dev/ttyUSB0")),
            QByteArray(), RunningTool::Look());
    }

    std::unique_ptr<RunningTool> start_tool()
    {
        m_table.emplace(m_tool.path(QStringLiteral("device.txt")));
        sim::RigOptions options;
        options.device.entry = m_is_version_given ? sim::Entry::Version : sim::Entry::Probe;
        options.device.echo = m_is_half_duplex ? sim::Echo::Apart : sim::Echo::None;
        m_rig = std::make_unique<sim::Rig>(m_table->choose(static_cast<unsigned short>(m_version)),
                                           options);
        if (m_has_before) {
            sim::MemoryImage(m_tool.path(QStringLiteral("before.hex")))
                .fill(m_rig->device().memory());
        }
        QObject::connect(&m_rig->device(), &sim::SimulatedDevice::command_received,
                         [this](const sim::Command& command) { watch(command); });
        return m_tool.start(with_port(m_rig->device().port_path()));
    }

    /// Whether the machine has been so busy that the tool asked again for what the device had
    /// answered, which is no part of a plan.
    bool was_disturbed() const
    {
        constexpr int sync_symbols = 2;
        const QByteArray heard = m_rig->device().heard();
        const auto other =
            std::find_if(heard.begin(), heard.end(), [](char byte) { return byte != probe; });
        const auto leading = static_cast<int>(other - heard.begin());
        const int expected =
            (m_is_version_given ? 0 : 1) + (other == heard.end() ? 0 : sync_symbols);
        return m_repeated_late || leading > expected;
    }

    Account counted(const ToolResult& result) const
    {
        const sim::Summary summary = m_rig->summary();
        Account account;
        for (const auto& kind : sim::command_kinds) {
            if (const unsigned int count = summary.commands.number_of(kind.kind)) {
                account.commands[kind.name] = count;
            }
        }
        account.to_device = summary.bytes_from_host;
        account.from_device = summary.bytes_to_host;
        account.pages_erased = summary.memory.pages_erased;
        account.succeeds = !result.crashed && result.status == 0;
        return account;
    }

private:
    /// The tool repeats a command at once when it does not like the answer, and after 300 ms when
    /// it has not got one.
    void watch(const sim::Command& command)
    {
        constexpr qint64 late_ms = 250;
        const bool is_repeated = command.payload == m_last.payload && !m_last.refused;
        m_repeated_late = m_repeated_late || (is_repeated && m_since_last.elapsed() > late_ms);
        m_last = command;
        m_since_last.start();
    }

    QStringList with_port(const QString& port) const
    {
        QStringList words = m_words;
        words.replaceInStrings(QStringLiteral("PORT"), port);
        return words;
    }

    void put_table()
    {
        const QByteArray rate =
            QByteArray::number(m_random.one_of({9600, 19200, 57600, 115200, 460800}));
        QByteArray row = table_row(m_version, m_device);
        m_tool.put_file(QStringLiteral("device.txt"),
                        row.replace("\t115200\t", "\t" + rate + "\t"));
    }

    void put_image(const QString& name)
    {
        Extents extents = random_extents(m_random, m_device.flash, 5);
        const Extents eeprom = random_extents(m_random, m_device.eeprom, 3);
        extents.insert(extents.end(), eeprom.begin(), eeprom.end());
        if (rarely(m_random, 10)) {
            extents.push_back({0x200000, 5});
        }
        if (rarely(m_random, 30)) {
            return; // no such file
        }
        save(cells_of(extents), name);
        if (rarely(m_random, 25)) {
            m_tool.put_file(name, m_tool.file(name) + ":00000001FE\n");
        }
        if (rarely(m_random, 25)) {
            m_tool.put_file(name, m_tool.file(name).replace(0, 3, ":01"));
        }
    }

    void save(const Cells& cells, const QString& name)
    {
        constexpr unsigned int chunk = 0x10000;
        MemoryMap map(chunk);
        for (auto cell = cells.begin(); cell != cells.end();) {
            const unsigned int start = cell->first;
            QByteArray bytes;
            while (cell != cells.end() &&
                   cell->first == start + static_cast<unsigned int>(bytes.size())) {
                bytes += (cell++)->second;
            }
            map.write(start, bytes);
        }
        ASSERT_TRUE(map.save_to_hex_file(m_tool.path(name)));
    }

    /// What the image may have there, some of it, and anything else.
    void put_before()
    {
        m_has_before = m_random.chance(60);
        Cells cells;
        for (const RandomMemory* memory : {&m_device.flash, &m_device.eeprom}) {
            const bool is_known = m_random.chance(50);
            for (unsigned int address = memory->start; is_known && address < memory->end;
                 ++address) {
                cells[address] = bytes_at(address, 1).at(0);
            }
            for (const Extent& extent : random_extents(m_random, *memory, 4)) {
                for (int i = 0; i < extent.size; ++i) {
                    cells[extent.address + static_cast<unsigned int>(i)] =
                        static_cast<char>(m_random.below(256));
                }
            }
        }
        save(cells, QStringLiteral("before.hex"));
    }

    using Group = QStringList;

    static Group group(const char* words)
    {
        return QString::fromLatin1(words).split(QLatin1Char(' '));
    }

    QString limit()
    {
        const unsigned int block = std::max(1U, m_device.flash.block);
        const unsigned int address = m_random.one_of(
            {m_device.flash.start, m_device.flash.end, m_device.eeprom.start, m_device.eeprom.end,
             m_random.from_to(m_device.flash.start, m_device.flash.end) / block * block,
             m_random.below(m_device.flash.end + 10)});
        return QStringLiteral("0x%1").arg(address, 0, 16);
    }

    Group ranged(const char* option, const char* file)
    {
        QString low = limit();
        QString high = limit();
        if (low.toUInt(nullptr, 16) > high.toUInt(nullptr, 16) && m_random.chance(80)) {
            low.swap(high);
        }
        return {QLatin1String(option), low, high, QLatin1String(file)};
    }

    std::vector<Group> operations()
    {
        switch (m_random.below(12)) {
        case 0:
            return {group("-wv image.hex")};
        case 1:
            return {group("-wv image.hex"), group("-e")};
        case 2:
            return {group("-e"), group("-w image.hex")};
        case 3:
            return {group("-w image.hex")};
        case 4:
            return {group("-e"), group("-w image.hex"), group("-v image.hex")};
        case 5:
            return {group("-r back.hex")};
        case 6:
            return {ranged("-l", "back.hex")};
        case 7:
            return {ranged("-W", "image.hex")};
        case 8:
            return {group("-w image.hex"), group("-r back.hex"), group("-v back.hex")};
        case 9:
            return {group("-v image.hex")};
        case 10:
            return {ranged("-W", "image.hex"), group("-v other.hex")};
        default:
            return {};
        }
    }

    void choose_words()
    {
        std::vector<Group> groups = operations();
        const auto add = [&](unsigned int percent, const char* words) {
            const bool added = m_random.chance(percent);
            if (added) {
                groups.push_back(group(words));
            }
            return added;
        };
        groups.push_back(group("-s PORT"));
        m_is_version_given = m_random.chance(50);
        if (m_is_version_given) {
            groups.push_back({QStringLiteral("-B"), hex4(m_version)});
        }
        m_is_half_duplex = add(15, "-h");
        add(10, "-b");
        add(2, "-V");
        add(5, "-M 19200");
        add(40, "-R");
        add(20, "-x frames.log");
        add(15, "-xe");
        add(15, "-xu");
        add(5, "stray");
        add(3, "-E 0x10 0");
        add(2, "-e");
        add(2, "-v image.hex");
        for (std::size_t i = groups.size(); i > 1; --i) {
            std::swap(groups[i - 1], groups[m_random.below(static_cast<unsigned int>(i))]);
        }
        for (const Group& words : groups) {
            m_words << words;
        }
    }

    Random m_random;
    RandomDevice m_device;
    ToolRun m_tool;
    unsigned int m_version = 0;
    bool m_has_before = false;
    bool m_is_version_given = false;
    bool m_is_half_duplex = false;
    QStringList m_words;
    std::optional<sim::DeviceTable> m_table;
    std::unique_ptr<sim::Rig> m_rig;
    sim::Command m_last;
    QElapsedTimer m_since_last;
    bool m_repeated_late = false;
};

Account planned(const ToolResult& result)
{
    const QJsonObject plan = QJsonDocument::fromJson(result.out).object();
    EXPECT_FALSE(plan.isEmpty()) << result;
    Account account;
    const QJsonObject commands = plan[QStringLiteral("commands")].toObject();
    for (auto it = commands.begin(); it != commands.end(); ++it) {
        if (it->toInt() != 0) {
            account.commands[it.key().toStdString()] = static_cast<unsigned int>(it->toInt());
        }
    }
    const QJsonObject bytes = plan[QStringLiteral("bytes")].toObject();
    account.to_device = bytes[QStringLiteral("to_device")].toInt(-1);
    account.from_device = bytes[QStringLiteral("from_device")].toInt(-1);
    account.pages_erased =
        static_cast<unsigned int>(plan[QStringLiteral("pages_erased")].toInt(-1));
    account.succeeds = plan[QStringLiteral("succeeds")].toBool();
    return account;
}

/// A run with all that has been observed of it.
struct ObservedRun {
    ToolResult result;
    Account counted;
    bool was_disturbed;
};

/// Notices when this process, and with it every simulated device, stops for a while.
class Heartbeat
{
public:
    Heartbeat()
    {
        QObject::connect(&m_timer, &QTimer::timeout,
                         [this] { m_longest_ms = std::max(m_longest_ms, m_since_last.restart()); });
        m_since_last.start();
        m_timer.start(period_ms);
    }

    /// For so long that an answer may have come too late.
    bool has_stopped() const { return m_longest_ms > 100; }

private:
    static constexpr int period_ms = 10;
    QTimer m_timer;
    QElapsedTimer m_since_last;
    qint64 m_longest_ms = 0;
};

/// All of them at once.
std::vector<ObservedRun> run_all(const std::vector<std::unique_ptr<Case>>& cases)
{
    const Heartbeat heartbeat;
    std::vector<std::unique_ptr<RunningTool>> running;
    running.reserve(cases.size());
    for (const auto& each : cases) {
        running.push_back(each->start_tool());
    }
    std::vector<ObservedRun> runs;
    for (std::size_t i = 0; i < cases.size(); ++i) {
        const ToolResult result = running[i]->result();
        QCoreApplication::processEvents();
        runs.push_back({result, cases[i]->counted(result), cases[i]->was_disturbed()});
    }
    for (ObservedRun& run : runs) {
        run.was_disturbed = run.was_disturbed || heartbeat.has_stopped();
    }
    return runs;
}

/// The same run again, in a folder as it was before, until nothing disturbs it.
ObservedRun run_undisturbed(unsigned int seed)
{
    constexpr int most = 10;
    for (int i = 1;; ++i) {
        std::vector<std::unique_ptr<Case>> only;
        only.push_back(std::make_unique<Case>(seed));
        ObservedRun run = run_all(only).front();
        if (!run.was_disturbed || i == most) {
            return run;
        }
    }
}

std::vector<Account> plan_all(const std::vector<std::unique_ptr<Case>>& cases)
{
    std::vector<std::unique_ptr<RunningTool>> running;
    running.reserve(cases.size());
    for (const auto& each : cases) {
        running.push_back(each->start_plan());
    }
    std::vector<Account> plans;
    plans.reserve(running.size());
    for (const auto& plan : running) {
        plans.push_back(planned(plan->result()));
    }
    return plans;
}

class RandomRuns : public testing::TestWithParam<int>
{
};

} // namespace

TEST_P(RandomRuns, AreWhatWasPlanned)
{
    const auto first_seed = static_cast<unsigned int>(GetParam() * cases_per_shard);
    std::vector<std::unique_ptr<Case>> cases;
    for (unsigned int i = 0; i < cases_per_shard; ++i) {
        cases.push_back(std::make_unique<Case>(first_seed + i));
    }
    const std::vector<Account> plans = plan_all(cases);
    std::vector<ObservedRun> runs = run_all(cases);
    int successes = 0;
    for (std::size_t i = 0; i < cases.size(); ++i) {
        const unsigned int seed = first_seed + static_cast<unsigned int>(i);
        if (!(plans[i] == runs[i].counted) && runs[i].was_disturbed) {
            runs[i] = run_undisturbed(seed);
        }
        EXPECT_EQ(plans[i], runs[i].counted)
            << "seed " << seed << ": zserial " << cases[i]->text().toStdString() << '\n'
            << runs[i].result;
        successes += plans[i].succeeds ? 1 : 0;
    }
    EXPECT_GE(successes, cases_per_shard / 5); // else hardly anything has been planned
}

INSTANTIATE_TEST_SUITE_P(Each, RandomRuns, testing::Range(0, shards));
