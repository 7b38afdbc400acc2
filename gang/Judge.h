#pragma once

#include "app/Settings.h"
#include "gang/ToolEnd.h"
#include "gang/Verdict.h"

#include <QString>

#include <optional>

namespace gang
{

struct Judgement {
    Verdict verdict = Verdict::Failed;
    QString message;                       ///< one line for people; empty when all is well
    std::optional<unsigned short> version; ///< of the bootloader, as far as it was settled
    bool touched = false;                  ///< the device's memory may have been erased or written
};

/// What a process of the tool came to that was started with these settings. Nothing is taken for
/// granted: a run is ok only if its status is 0 and its output is, to the byte, that of a run in
/// which every wanted operation succeeded. What a read left in its file is not looked at here.
Judgement judge(const ToolEnd& end, const Settings& settings);

} // namespace gang
