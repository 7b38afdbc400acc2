#pragma once

#include <QByteArray>
#include <QString>

namespace gang
{

/// How a process of the tool ended, and what it printed.
struct ToolEnd {
    enum class How {
        Exited,     ///< by itself, with `code` as its status
        Signalled,  ///< of the signal `code` that the gang did not send
        NotStarted, ///< never ran; `reason` says why
        TimedOut,   ///< ended by the gang after its time limit
        Stopped,    ///< ended by the gang because the user asked for it
    };

    How how = How::Exited;
    int code = 0;
    QByteArray out; ///< standard output; of progress lines in a row only the last
    QByteArray err; ///< standard error
    QString reason;
};

} // namespace gang
