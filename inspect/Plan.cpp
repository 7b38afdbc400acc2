#include "inspect/Plan.h"

#include "app/CommandLine.h"
#include "app/Console.h"
#include "device/Protocol.h"
#include "inspect/CommandLineLint.h"
#include "inspect/DeviceVersion.h"
#include "inspect/Figures.h"
#include "inspect/FileOutlook.h"
#include "inspect/Frames.h"
#include "inspect/InputFile.h"
#include "inspect/InspectedImage.h"
#include "inspect/RowLint.h"
#include "inspect/UsageError.h"
#include "sim/device/Bootloader.h"
#include "sim/device/Error.h"
#include "sim/device/MemoryGeometry.h"

#include <algorithm>
#include <iterator>

namespace inspect
{

namespace
{

using Outcome = PlannedStep::Outcome;

QString hex4(unsigned int value)
{
    return QStringLiteral("%1").arg(value, 4, 16, QLatin1Char('0')).toUpper();
}

QString in_range(bool limited, const TypedRange& range)
{
    return limited ? QStringLiteral(", bytes %1 to %2")
                         .arg(address_text(range.lower), address_text(range.upper))
                   : QString();
}

QString without_areas(const Settings& settings)
{
    return (settings.include_encrypted ? QString() : QStringLiteral(", without encrypted flash")) +
           (settings.include_unencrypted ? QString()
                                         : QStringLiteral(", without unencrypted flash"));
}

PlannedStep step_of(Operation operation, const Settings& settings)
{
    const QString areas = without_areas(settings);
    switch (operation) {
    case Operation::WriteAndVerify:
        return {QStringLiteral("write and verify"), settings.write_and_verify_file,
                (settings.erase_all_wanted ? QStringLiteral("every page that the image touches")
                                           : QStringLiteral("pages that differ from the image")) +
                    areas};
    case Operation::Erase:
        return settings.erase_all_wanted
                   ? PlannedStep{QStringLiteral("erase"), {}, QStringLiteral("all flash") + areas}
                   : PlannedStep{QStringLiteral("erase"),
                                 {},
                                 QStringLiteral("addresses %1 to %2")
                                     .arg(settings.include_encrypted ? 1 : 0)
                                     .arg(settings.include_unencrypted ? 1 : 0)};
    case Operation::Write:
        return {QStringLiteral("write"), settings.write_file,
                QStringLiteral("rows of the image") +
                    in_range(settings.write_range_wanted, settings.write_range) + areas};
    case Operation::Read:
        return {QStringLiteral("read"), settings.read_file,
                QStringLiteral("flash and EEPROM") +
                    in_range(settings.read_range_wanted, settings.read_range) + areas};
    case Operation::Verify:
        return {QStringLiteral("verify"), settings.verify_file,
                QStringLiteral("rows of the image") + areas};
    }
    return {};
}

/// What a starting device answers to the first probe.
struct ProbeReply {
    int bytes = 0;
    unsigned short version = 0; ///< as the uploader understands it
};

ProbeReply probe_reply(const Profile& profile)
{
    sim::DeviceMemory memory(profile);
    sim::Bootloader bootloader(profile, memory, sim::Entry::Probe);
    const QByteArray answer =
        bootloader.hear(QByteArray(1, protocol::entry_probe), protocol::starting_baud)
            .front()
            .answer;
    return {answer.size(), protocol::version_in(answer.right(protocol::version_length))};
}

class Planner
{
public:
    explicit Planner(const PlanRequest& request) : m_request(request)
    {
        m_plan.arguments = request.arguments;
        m_plan.present_content = request.present_content;
    }

    Plan make()
    {
        m_plan.problems = lint_words(m_request.arguments);
        const std::optional<Failure> refusal =
            command_line::take(m_request.arguments, {could_open, could_append}, m_settings);
        if (refusal) {
            add(Code::CommandLineRefused, QStringLiteral("\"%1\"").arg(refusal->message.trimmed()));
            return std::move(m_plan);
        }
        list_steps();
        if (asks_for_a_device()) {
            choose_device();
        }
        append(lint_settings(m_settings, profile(), m_request.table));
        if (settle_version()) {
            inspect_images();
            rehearse_operations();
        }
        return std::move(m_plan);
    }

private:
    const Profile* profile() const
    {
        return m_plan.uploader == nullptr ? nullptr : m_plan.uploader->profile.get();
    }

    bool is_version_given() const { return m_settings.bootloader_version != 0; }

    /// "-V" alone fails before any table is read.
    bool asks_for_a_device() const
    {
        return !m_settings.port_name.isEmpty() &&
               (is_version_given() || m_settings.entry_procedure_wanted);
    }

    void add(Code code, const QString& message)
    {
        m_plan.problems.push_back({code, message, {}, {}, {}});
    }

    void append(const std::vector<Problem>& problems)
    {
        m_plan.problems.insert(m_plan.problems.end(), problems.begin(), problems.end());
    }

    void list_steps()
    {
        if (is_version_given()) {
            m_plan.steps.push_back({QStringLiteral("version"),
                                    {},
                                    QStringLiteral("0x%1 from the command line")
                                        .arg(hex4(m_settings.bootloader_version & 0xFFFFU))});
        } else if (m_settings.entry_procedure_wanted) {
            m_plan.steps.push_back(
                {QStringLiteral("entry"), {}, QStringLiteral("the first probe is answered")});
        } else {
            m_plan.steps.push_back(
                {QStringLiteral("version"), {}, QStringLiteral("of the profile that is selected")});
        }
        for (const Operation operation : operations_of(m_settings)) {
            m_plan.steps.push_back(step_of(operation, m_settings));
        }
        if (m_settings.reset_wanted) {
            m_plan.steps.push_back({QStringLiteral("reset"), {}, QStringLiteral("not answered")});
        }
    }

    void choose_device()
    {
        m_plan.table = read_table(m_request.table);
        if (!m_plan.table.is_readable) {
            throw UsageError(QStringLiteral("cannot read the table %1: %2")
                                 .arg(m_plan.table.path, m_plan.table.problems.front().message));
        }
        append(m_plan.table.problems);
        if (m_request.device) {
            m_plan.device = &row_for(m_plan.table, *m_request.device);
        } else if (!is_version_given()) {
            throw UsageError(QStringLiteral("name the device that will answer with --device, "
                                            "because the command line has no -B"));
        }
        choose_profile();
        if (m_plan.uploader != nullptr) {
            append(lint_row(m_plan.table, *m_plan.uploader));
        }
    }

    /// The row that the uploader takes; null when there is none for the version.
    void choose_profile()
    {
        m_version = static_cast<unsigned short>(m_settings.bootloader_version);
        if (!is_version_given()) {
            m_reply = probe_reply(*m_plan.device->profile);
            m_version = m_reply.version;
        }
        m_plan.uploader = m_plan.table.find(m_version);
        if (m_plan.device == nullptr) {
            m_plan.device = m_plan.uploader;
        } else if (is_version_given() && m_plan.uploader != m_plan.device) {
            add(Code::OtherDevice, QStringLiteral("-B names %1 and --device %2.")
                                       .arg(hex4(m_version), m_plan.device->version().toUpper()));
        }
    }

    PlannedStep& first_step() { return m_plan.steps.front(); }

    bool fail_first(const QString& message)
    {
        first_step().outcome = Outcome::Fails;
        first_step().messages << message;
        return false;
    }

    /// Whether the run gets to its operations.
    bool settle_version()
    {
        if (m_settings.port_name.isEmpty()) {
            return false;
        }
        if (!asks_for_a_device()) {
            return fail_first(QStringLiteral("Version request failed, aborting..."));
        }
        if (!is_version_given()) {
            enter();
        }
        const std::vector<Problem>& found = m_plan.table.problems;
        if (std::any_of(found.begin(), found.end(), ends_the_run)) {
            return fail_first(QStringLiteral("(ends abnormally)"));
        }
        if (m_plan.uploader == nullptr) {
            return lack_profile();
        }
        first_step().outcome = Outcome::Done;
        return true;
    }

    void enter()
    {
        const quint64 echo = m_settings.half_duplex ? 1 : 0;
        const auto bytes = static_cast<quint64>(m_reply.bytes);
        Traffic& traffic = first_step().traffic;
        traffic.commands[sim::Command::Kind::Probe] = 1;
        traffic.bytes_to_device = 1;
        traffic.bytes_from_device = bytes + echo;
        traffic.seconds = seconds_of(1 + bytes, protocol::starting_baud);
        first_step().what += QStringLiteral(" with version 0x%1").arg(hex4(m_version));
        m_plan.time.entry = traffic.seconds;
        m_plan.time.settling = protocol::settle_ms / 1000.0;
    }

    bool lack_profile()
    {
        add(Code::ProfileMissing, QStringLiteral("%1 has no usable row for version %2.")
                                      .arg(m_plan.table.path, hex4(m_version)));
        const unsigned int shown = is_version_given() ? m_settings.bootloader_version : m_version;
        return fail_first(
            (is_version_given()
                 ? QStringLiteral("Could not find device profile matching specified 0x%1, "
                                  "aborting...")
                 : QStringLiteral("Found version 0x%1 but could not load profile for this version. "
                                  "Aborting..."))
                .arg(hex4(shown).toLower()));
    }

    void inspect_images()
    {
        QStringList seen;
        for (const FileUse& file : images_used(m_settings)) {
            if (seen.contains(file.name) || !InputFile(file.name).is_open()) {
                continue;
            }
            seen << file.name;
            Report report;
            add_problems(report, *inspect_image(file.name, profile()));
            append(report.problems);
        }
    }

    bool has(Code code) const
    {
        return std::any_of(m_plan.problems.begin(), m_plan.problems.end(),
                           [code](const Problem& problem) { return problem.code == code; });
    }

    void rehearse_operations()
    {
        if (has(Code::ImageUnforeseen)) {
            m_plan.is_foreseen = false;
            return;
        }
        if (!m_request.present_content.isEmpty()) {
            const InputFile file(m_request.present_content);
            if (!file.is_open()) {
                throw UsageError(QStringLiteral("cannot read %1: %2")
                                     .arg(m_request.present_content, file.reason()));
            }
            check_present_content();
        }
        Rehearsed result = rehearse({*m_plan.device->profile, *profile()}, m_settings,
                                    {m_request.present_content, m_request.keeps_commands});
        take_steps(result);
        m_plan.commands = std::move(result.commands);
        judge(result);
        if (m_plan.succeeds()) {
            m_plan.time.closing = closing_ms / 1000.0;
        }
    }

    void check_present_content() const
    {
        const ImageFile content = read_image(m_request.present_content, {});
        const auto error = std::find_if(
            content.problems.begin(), content.problems.end(), [](const Problem& problem) {
                return kind_of(problem.code).severity == Severity::Error;
            });
        if (!content.loads && error != content.problems.end()) {
            throw UsageError(QStringLiteral("cannot load %1, line %2: %3")
                                 .arg(content.path)
                                 .arg(error->place.line)
                                 .arg(QLatin1String(kind_of(error->code).title)));
        }
    }

    void take_steps(const Rehearsed& result)
    {
        auto step = m_plan.steps.begin() + 1;
        for (const RehearsedStep& rehearsed : result.steps) {
            step->outcome = rehearsed.fails ? Outcome::Fails : Outcome::Done;
            step->traffic = rehearsed.traffic;
            m_plan.time.operations += rehearsed.traffic.seconds;
            for (const QString& message : rehearsed.messages) {
                step->messages << message.trimmed();
            }
            if (rehearsed.fails) {
                add_failure(*step);
            }
            judge_selection(*step);
            ++step;
        }
    }

    /// An image that is missing or that has no byte in the device is reported as such.
    void judge_selection(const PlannedStep& step)
    {
        const bool uses_image = !step.file.isEmpty() && step.name != QLatin1String("read");
        const bool ends_normally = step.outcome == Outcome::Done || has_failed_to_match(step);
        if (uses_image && ends_normally && step.traffic.commands.empty() &&
            !has(Code::ImageMissing) && !has(Code::NothingInDevice)) {
            add(Code::NothingSelected, QStringLiteral("Step \"%1\": no byte of %2 is selected.")
                                           .arg(step.name, step.file));
        }
    }

    static bool has_failed_to_match(const PlannedStep& step)
    {
        return step.messages.contains(QStringLiteral("Verification failure!"));
    }

    /// Of a message of many lines, one for each attempt, the first says enough.
    void add_failure(const PlannedStep& step)
    {
        QStringList messages;
        for (const QString& message : step.messages) {
            const int end = message.indexOf(QLatin1Char('\n'));
            messages << QStringLiteral("\"%1\"").arg(
                end < 0 ? message : message.left(end) + QStringLiteral(" ..."));
        }
        add(Code::StepFails,
            QStringLiteral("Step \"%1\": %2").arg(step.name, messages.join(QStringLiteral(", "))));
    }

    /// Why -e, when it is given, has not helped.
    QString remedy_of_unerased_bits() const
    {
        const std::vector<Operation> operations = operations_of(m_settings);
        const bool erases_all =
            m_settings.erase_all_wanted &&
            std::count(operations.begin(), operations.end(), Operation::Erase) != 0;
        if (!erases_all) {
            return {};
        }
        return profile()->get_address_divisor(MEMORY_FLASH) == 1
                   ? QStringLiteral(
                         "Use -e -wv instead of -e -w: -e leaves these bytes as they were.")
                   : QStringLiteral(
                         "Use -e -wv instead of -e -w: the divisor is not 1, and -e leaves "
                         "these bytes as they were (T033).");
    }

    void judge(const Rehearsed& result)
    {
        if (result.unerased.count != 0) {
            m_plan.problems.push_back(
                {Code::BitsNotErased,
                 QStringLiteral("%1 of flash would not take their value, the first at %2.")
                     .arg(count_text(result.unerased.count, "byte"),
                          address_text(result.unerased.first_address)),
                 {},
                 {},
                 remedy_of_unerased_bits()});
        }
        if (result.late) {
            const sim::Command& command = result.late->command;
            add(Code::AnswerTooLate,
                QStringLiteral("A %1 at %2 takes %3 s at %4 baud.")
                    .arg(QLatin1String(sim::name_of(command.kind)),
                         address_text(sim::byte_address_of(*profile(), command)))
                    .arg(result.late->seconds, 0, 'f', 3)
                    .arg(profile()->attributes[Profile::max_baud]));
        }
        if (result.left_out_bytes != 0) {
            add(Code::ContentOutside,
                QStringLiteral("%1 of %2 lie outside the device.")
                    .arg(count_text(result.left_out_bytes, "byte"), m_request.present_content));
        }
        judge_loss(result.lost);
    }

    void judge_loss(const LostContent& lost)
    {
        QStringList parts;
        for (const auto& [found, memory] : {std::pair(lost.flash, QStringLiteral("flash")),
                                            std::pair(lost.eeprom, QStringLiteral("EEPROM"))}) {
            if (found.count != 0) {
                parts << QStringLiteral("%1 of %2, the first at %3")
                             .arg(count_text(found.count, "byte"), memory,
                                  address_text(found.first_address));
            }
        }
        if (!parts.isEmpty()) {
            add(Code::ContentLost, parts.join(QStringLiteral("; ")) + QLatin1Char('.'));
        }
    }

    const PlanRequest& m_request;
    Settings m_settings;
    ProbeReply m_reply;
    unsigned short m_version = 0; ///< as the uploader knows it
    Plan m_plan;
};

} // namespace

QString name_of(PlannedStep::Outcome outcome)
{
    switch (outcome) {
    case Outcome::Done:
        return QStringLiteral("done");
    case Outcome::Fails:
        return QStringLiteral("fails");
    case Outcome::NotReached:
        break;
    }
    return QStringLiteral("not reached");
}

bool Plan::succeeds() const
{
    return !steps.empty() && std::all_of(steps.begin(), steps.end(), [](const PlannedStep& step) {
        return step.outcome == Outcome::Done;
    });
}

Traffic Plan::traffic() const
{
    Traffic sum;
    for (const PlannedStep& step : steps) {
        sum += step.traffic;
    }
    return sum;
}

Plan make_plan(const PlanRequest& request)
{
    return Planner(request).make();
}

} // namespace inspect
