#include "inspect/Rehearsal.h"

#include "inspect/RehearsalStage.h"
#include "inspect/SilentLibrary.h"
#include "inspect/StandIns.h"
#include "inspect/UsageError.h"

#include <QTextStream>

#include <utility>

namespace inspect
{

namespace
{

/// A machine that stops for so long that an answer comes too late makes the uploader repeat a
/// command, which is nothing that belongs to the plan. It hardly does so again and again.
constexpr int most_rehearsals = 5;

Settings with_stand_ins(Settings settings, StandIns& files)
{
    for (QString* name :
         {&settings.write_file, &settings.verify_file, &settings.write_and_verify_file}) {
        *name = files.copy_of(*name);
    }
    for (QString* name : {&settings.read_file, &settings.log_file}) {
        *name = files.empty_for(*name); // which may have grown for months
    }
    return settings;
}

void take_steps(RehearsalStage& stage, const Settings& settings)
{
    QString console;
    QTextStream console_stream(&console);
    OperationDispatch dispatch(stage.host(), settings, console_stream);
    for (const Operation operation : operations_of(settings)) {
        stage.take(operation, [&] { return dispatch.carry_out(operation); });
        if (stage.has_failed()) {
            return;
        }
    }
    if (settings.reset_wanted) {
        stage.take(std::nullopt, [&stage] {
            stage.host().reset();
            return std::optional<Failure>();
        });
    }
}

/// Nothing when the machine has disturbed it.
std::optional<Rehearsed> rehearse_once(const RehearsedProfiles& profiles, const Settings& settings,
                                       const RehearsalOptions& options)
{
    StandIns files;
    const Settings harmless = with_stand_ins(settings, files);
    RehearsalStage stage(profiles, harmless, options);
    take_steps(stage, harmless);
    Rehearsed result = stage.take_result();
    for (RehearsedStep& step : result.steps) {
        for (QString& message : step.messages) {
            message = files.with_files(message);
        }
    }
    return stage.was_disturbed() ? std::nullopt : std::optional(std::move(result));
}

} // namespace

void FoundBytes::add(unsigned int address)
{
    if (count++ == 0) {
        first_address = address;
    }
}

Traffic& Traffic::operator+=(const Traffic& other)
{
    for (const auto& [kind, count] : other.commands) {
        commands[kind] += count;
    }
    bytes_to_device += other.bytes_to_device;
    bytes_from_device += other.bytes_from_device;
    pages_erased += other.pages_erased;
    seconds += other.seconds;
    return *this;
}

Rehearsed rehearse(const RehearsedProfiles& profiles, const Settings& settings,
                   const RehearsalOptions& options)
{
    const SilentLibrary silent;
    for (int i = 0; i < most_rehearsals; ++i) {
        if (auto result = rehearse_once(profiles, settings, options)) {
            return *result;
        }
    }
    throw UsageError(QStringLiteral("the machine is too busy to rehearse the run; try again"));
}

} // namespace inspect
