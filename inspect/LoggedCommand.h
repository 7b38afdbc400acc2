#pragma once

#include "inspect/LogSummary.h"

#include <QByteArray>

namespace inspect
{

/// A command of a log with all of its attempts so far.
struct LoggedCommand {
    SentCommand command;
    QByteArray payload;
    qint64 line = 0;      ///< of the first attempt
    qint64 last_line = 0; ///< of the last one
    int attempts = 0;
    int unanswered = 0;                    ///< attempts
    int refused = 0;                       ///< attempts
    AttemptEnd end = AttemptEnd::NoAnswer; ///< of the last attempt
    bool is_awaited = false;               ///< nothing has followed the last attempt yet
    bool is_given_up = false;

    bool has_failed() const { return end == AttemptEnd::NoAnswer || end == AttemptEnd::Refused; }
};

} // namespace inspect
