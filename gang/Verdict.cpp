#include "gang/Verdict.h"

namespace gang
{

QString name_of(Verdict verdict)
{
    constexpr std::array<const char*, all_verdicts.size()> names = {
        "ok",        "port",    "silent", "unknown-version", "table",       "file",
        "erase",     "write",   "read",   "mismatch",        "interrupted", "crashed",
        "timed-out", "unsaved", "failed"};
    return QLatin1String(names.at(static_cast<std::size_t>(verdict)));
}

} // namespace gang
