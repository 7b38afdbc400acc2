#pragma once

#include <QString>

#include <optional>

/// Why something is refused or has failed; nothing when all is well.
using Reason = std::optional<QString>;
