#pragma once

#include <QString>

#include <optional>

/// Why a command line is not carried out.
struct Refusal {
    QString message; ///< printed as it stands, with its newline if it has one
    bool with_usage = false;
};

/// Nothing when all is well.
using Outcome = std::optional<Refusal>;
