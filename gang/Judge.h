#pragma once

#include "app/Settings.h"
#include "gang/ToolResult.h"
#include "gang/Verdict.h"

#include <QString>

#include <optional>

namespace gang
{

struct Judgement {
    Verdict verdict = Verdict::Failed;
    QString message;                       ///< one line for the user; empty if ok
    std::optional<unsigned short> version; ///< of the bootloader, if it was determined
    bool touched = false;                  ///< the device's memory may have been erased or written
};

/// Judges a zserial process that was started with these settings. A run is ok only if its status is
/// 0 and its output, apart from progress and recovered errors, is byte for byte that of a run in
/// which every requested operation succeeded. Does not look at the file of a read; see
/// ReadFileCheck.
Judgement judge(const ToolResult& result, const Settings& settings);

} // namespace gang
