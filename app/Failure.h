#pragma once

#include "app/Refusal.h"

#include <QString>

/// Prints why and ends the process with status 1. What the console still holds is shown and the
/// frame log is closed on the way; nothing else is cleaned up.
[[noreturn]] void refuse_and_exit(const Refusal& refusal);
[[noreturn]] void fail(const QString& message);
