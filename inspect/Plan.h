#pragma once

#include "inspect/Problem.h"
#include "inspect/Rehearsal.h"
#include "inspect/TableFile.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace inspect
{

/// A step of a run.
struct PlannedStep {
    enum class Outcome { Done, Fails, NotReached };

    QString name; ///< "entry", "version", "erase", "write", "read", "verify", "write and verify",
                  ///< "reset"
    QString file; ///< empty for none
    QString what; ///< in words
    Outcome outcome = Outcome::NotReached;
    QStringList messages = {}; ///< of the uploader, of a step that fails
    Traffic traffic = {};
};

/// "done", "fails", "not reached".
QString name_of(PlannedStep::Outcome outcome);

/// The expected time of a run, by what it passes with.
struct PlannedTime {
    double entry = 0;
    double settling = 0;
    double operations = 0;
    double closing = 0;

    double total() const { return entry + settling + operations + closing; }
};

/// What a run would do.
struct Plan {
    QStringList arguments;
    TableFile table; ///< empty when the run ends before it matters
    /// At the other end of the line; null when the run ends before it matters.
    const TableRow* device = nullptr;
    const TableRow* uploader = nullptr; ///< what the uploader takes it for
    QString present_content;            ///< file; empty for an erased device
    std::vector<PlannedStep> steps;
    std::vector<sim::Command> commands; ///< in their order, when they were asked for
    PlannedTime time;
    bool is_foreseen = true; ///< otherwise nothing is known of what goes over the line
    std::vector<Problem> problems;

    bool succeeds() const;
    Traffic traffic() const;
};

struct PlanRequest {
    QStringList arguments;         ///< of the uploader
    QString table;                 ///< file
    std::optional<QString> device; ///< version
    QString present_content;       ///< file; empty for an erased device
    bool keeps_commands = false;
};

/// Throws UsageError when what is asked for cannot be planned.
Plan make_plan(const PlanRequest& request);

} // namespace inspect
