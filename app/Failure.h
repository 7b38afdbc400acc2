#pragma once

#include <QString>

/// Why a run ends early: a command line that is refused, or a step that failed.
struct Failure {
    QString message; ///< printed as it stands, with its newline if it has one
    bool with_usage = false;
};
