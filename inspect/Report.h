#pragma once

#include "inspect/ExitStatus.h"
#include "inspect/Problem.h"
#include "inspect/TextPage.h"

#include <QJsonObject>

#include <functional>
#include <vector>

namespace inspect
{

/// The result of a subcommand.
struct Report {
    std::vector<Problem> problems;
    std::function<QJsonObject()> facts;        ///< its own keys, beside "problems"
    std::function<void(TextPage&)> print_text; ///< its own text, which goes before the problems
    bool incomplete = false;                   ///< a part of the command could not be carried out

    ExitStatus status() const;
};

/// {"problems": [...], ...}
QJsonObject json_of(const Report& report);

/// Everything as text. With `colour`, with escape sequences for a terminal.
QString text_of(const Report& report, bool colour);

} // namespace inspect
