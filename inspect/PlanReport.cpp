#include "inspect/PlanReport.h"

#include "inspect/Figures.h"
#include "inspect/OptionMeanings.h"
#include "sim/device/MemoryGeometry.h"

#include <QJsonArray>

#include <cmath>

namespace inspect
{

namespace
{

using sim::Command;

/// What the uploader ever sends.
constexpr std::array<Command::Kind, 6> kinds = {Command::Kind::Probe, Command::Kind::Version,
                                                Command::Kind::Erase, Command::Kind::Write,
                                                Command::Kind::Read,  Command::Kind::Reset};

constexpr int indent = 2;
constexpr int option_width = 28;

QJsonValue number(quint64 value)
{
    return static_cast<qint64>(value);
}

QJsonValue text_or_null(const QString& text)
{
    return text.isEmpty() ? QJsonValue() : QJsonValue(text);
}

/// In microseconds there is no difference between a calculated second and the same one.
QJsonValue seconds(double value)
{
    return std::round(value * 1e6) / 1e6;
}

quint64 count_of(const Traffic& traffic, Command::Kind kind)
{
    const auto found = traffic.commands.find(kind);
    return found == traffic.commands.end() ? 0 : found->second;
}

QJsonObject json_of(const Traffic& traffic)
{
    QJsonObject commands;
    for (const Command::Kind kind : kinds) {
        commands.insert(QLatin1String(sim::name_of(kind)), number(count_of(traffic, kind)));
    }
    return {{QStringLiteral("commands"), commands},
            {QStringLiteral("bytes"),
             QJsonObject{{QStringLiteral("to_device"), number(traffic.bytes_to_device)},
                         {QStringLiteral("from_device"), number(traffic.bytes_from_device)}}},
            {QStringLiteral("pages_erased"), number(traffic.pages_erased)}};
}

QJsonObject json_of(const PlannedStep& step)
{
    QJsonObject object = json_of(step.traffic);
    object.insert(QStringLiteral("step"), step.name);
    object.insert(QStringLiteral("file"), text_or_null(step.file));
    object.insert(QStringLiteral("what"), step.what);
    object.insert(QStringLiteral("outcome"), name_of(step.outcome));
    object.insert(QStringLiteral("messages"), QJsonArray::fromStringList(step.messages));
    object.insert(QStringLiteral("seconds"), seconds(step.traffic.seconds));
    return object;
}

QJsonObject json_of(const PlannedTime& time)
{
    return {{QStringLiteral("entry"), seconds(time.entry)},
            {QStringLiteral("settling"), seconds(time.settling)},
            {QStringLiteral("operations"), seconds(time.operations)},
            {QStringLiteral("closing"), seconds(time.closing)},
            {QStringLiteral("total"), seconds(time.total())}};
}

QJsonArray options_of(const Plan& plan)
{
    QJsonArray options;
    for (const command_line::GivenWord& word : command_line::split(plan.arguments)) {
        options.append(
            QJsonObject{{QStringLiteral("word"), word.text},
                        {QStringLiteral("arguments"), QJsonArray::fromStringList(word.following)},
                        {QStringLiteral("meaning"), meaning_of(word)}});
    }
    return options;
}

/// "flash", "EEPROM", or nothing for a command that is about neither.
QString memory_of(const Command& command)
{
    if (!command.is_access()) {
        return {};
    }
    return command.is_eeprom() ? QStringLiteral("EEPROM") : QStringLiteral("flash");
}

QJsonObject json_of(const Command& command, const Profile& profile)
{
    QJsonObject object = {{QStringLiteral("command"), QLatin1String(sim::name_of(command.kind))},
                          {QStringLiteral("memory"), text_or_null(memory_of(command).toLower())},
                          {QStringLiteral("word_address"), QJsonValue()},
                          {QStringLiteral("byte_address"), QJsonValue()},
                          {QStringLiteral("count"), QJsonValue()}};
    if (command.is_access()) {
        object[QStringLiteral("word_address")] = number(command.word_address());
        object[QStringLiteral("byte_address")] = number(sim::byte_address_of(profile, command));
        object[QStringLiteral("count")] = number(command.count());
    }
    return object;
}

// ---- text -----------------------------------------------------------------------------------

void print_options(TextPage& page, const Plan& plan)
{
    page.heading(QStringLiteral("The command line"));
    for (const command_line::GivenWord& word : command_line::split(plan.arguments)) {
        const QString given = (QStringList(word.text) + word.following).join(QLatin1Char(' '));
        if (given.size() < option_width) {
            page.labelled(printable(given), meaning_of(word), indent, option_width);
        } else {
            page.paragraph(given, indent);
            page.paragraph(meaning_of(word), indent + option_width);
        }
    }
}

void print_device(TextPage& page, const Plan& plan)
{
    if (plan.device == nullptr) {
        return;
    }
    page.line();
    page.heading(QStringLiteral("The device"));
    page.paragraph(
        QStringLiteral("%1 %2, %3, line %4.")
            .arg(plan.device->version().toUpper(), plan.device->profile->name, plan.table.path)
            .arg(plan.device->line),
        indent);
    page.paragraph(
        plan.present_content.isEmpty()
            ? QStringLiteral("Assumed to be erased: --before names what it holds.")
            : QStringLiteral("Holds %1, and is erased elsewhere.").arg(plan.present_content),
        indent);
}

QString commands_text(const Traffic& traffic)
{
    QStringList parts;
    for (const Command::Kind kind : kinds) {
        if (const quint64 count = count_of(traffic, kind)) {
            parts << count_text(count, sim::name_of(kind));
        }
    }
    return parts.isEmpty() ? QStringLiteral("none") : parts.join(QStringLiteral(", "));
}

QString bytes_text(const Traffic& traffic)
{
    return QStringLiteral("%1 to the device, %2 from it")
        .arg(traffic.bytes_to_device)
        .arg(traffic.bytes_from_device);
}

void print_steps(TextPage& page, const Plan& plan)
{
    constexpr int name_width = 20;
    page.line();
    page.heading(QStringLiteral("The steps"));
    int position = 0;
    for (const PlannedStep& step : plan.steps) {
        const QString file = step.file.isEmpty() ? QString() : step.file + QStringLiteral(": ");
        page.labelled(QStringLiteral("%1 %2").arg(++position).arg(step.name), file + step.what,
                      indent, name_width);
        if (!plan.is_foreseen) {
            continue;
        }
        if (step.outcome != PlannedStep::Outcome::Done) {
            page.paragraph(name_of(step.outcome), indent + name_width);
        }
        if (!step.traffic.commands.empty()) {
            page.paragraph(QStringLiteral("%1; bytes: %2")
                               .arg(commands_text(step.traffic), bytes_text(step.traffic)),
                           indent + name_width);
        }
    }
}

void print_list(TextPage& page, const Plan& plan)
{
    if (plan.commands.empty()) {
        return;
    }
    page.line();
    page.heading(QStringLiteral("The commands"));
    page.line(QStringLiteral("  number  command  memory  word address  byte address  count"));
    quint64 position = 0;
    for (const Command& command : plan.commands) {
        QString line = QStringLiteral("  %1  %2")
                           .arg(++position, 6)
                           .arg(QLatin1String(sim::name_of(command.kind)), -7);
        if (command.is_access()) {
            line += QStringLiteral("  %1  %2    %3  %4")
                        .arg(memory_of(command), -6)
                        .arg(address_text(command.word_address()),
                             address_text(sim::byte_address_of(*plan.device->profile, command)))
                        .arg(command.count(), 5);
        }
        page.line(line);
    }
}

void print_sum(TextPage& page, const Plan& plan)
{
    const Traffic traffic = plan.traffic();
    const PlannedTime& time = plan.time;
    page.line();
    page.heading(QStringLiteral("In all"));
    page.labelled(QStringLiteral("commands"), commands_text(traffic));
    page.labelled(QStringLiteral("bytes"), bytes_text(traffic));
    page.labelled(QStringLiteral("pages"), QStringLiteral("%1 erased").arg(traffic.pages_erased));
    page.labelled(QStringLiteral("time"),
                  QStringLiteral("%1: entry %2, settling %3, operations %4, closing %5")
                      .arg(duration_text(time.total()), duration_text(time.entry),
                           duration_text(time.settling), duration_text(time.operations),
                           duration_text(time.closing)));
    if (plan.uploader != nullptr) {
        page.labelled(QString(),
                      QStringLiteral("at %1 baud, without the time that the device needs to erase "
                                     "and write, and without retries")
                          .arg(plan.uploader->profile->attributes[Profile::max_baud]));
    }
}

} // namespace

QJsonObject json_of(const Plan& plan, bool with_commands)
{
    QJsonObject object = json_of(plan.traffic());
    QJsonArray steps;
    for (const PlannedStep& step : plan.steps) {
        steps.append(json_of(step));
    }
    object.insert(QStringLiteral("options"), options_of(plan));
    object.insert(QStringLiteral("steps"), steps);
    object.insert(QStringLiteral("seconds"), json_of(plan.time));
    object.insert(QStringLiteral("foreseen"), plan.is_foreseen);
    object.insert(QStringLiteral("succeeds"), plan.succeeds());
    object.insert(QStringLiteral("before"), text_or_null(plan.present_content));
    object.insert(QStringLiteral("device"),
                  plan.device == nullptr
                      ? QJsonValue()
                      : QJsonObject{{QStringLiteral("version"), plan.device->version().toUpper()},
                                    {QStringLiteral("name"), plan.device->profile->name}});
    if (with_commands) {
        QJsonArray commands;
        for (const Command& command : plan.commands) {
            commands.append(json_of(command, *plan.device->profile));
        }
        object.insert(QStringLiteral("list"), commands);
    }
    return object;
}

void print(TextPage& page, const Plan& plan)
{
    print_options(page, plan);
    print_device(page, plan);
    if (plan.steps.empty()) {
        return;
    }
    print_steps(page, plan);
    if (plan.is_foreseen) {
        print_list(page, plan);
        print_sum(page, plan);
    }
}

} // namespace inspect
