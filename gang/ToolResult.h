#pragma once

#include <QByteArray>
#include <QString>

namespace gang
{

/// How a zserial process ended, and what it printed.
struct ToolResult {
    enum class How {
        Exited,     ///< with status `code`
        Signalled,  ///< by signal `code`, which the gang did not send
        NotStarted, ///< `reason` says why
        TimedOut,   ///< killed at its time limit
        Stopped,    ///< killed at the user's request
    };

    How how = How::Exited;
    int code = 0;
    QByteArray out; ///< standard output; of consecutive progress lines only the last
    QByteArray err; ///< standard error
    QString reason;
};

} // namespace gang
