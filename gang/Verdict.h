#pragma once

#include <QString>

#include <array>
#include <optional>

namespace gang
{

/// The result of a run. Each run has exactly one.
enum class Verdict {
    Ok,
    Port,           ///< the port cannot be opened
    Silent,         ///< no answer to the entry procedure
    UnknownVersion, ///< the table has no row for the version, or the version has changed
    Table,          ///< the table cannot be read, or has unusable values
    File,           ///< a file cannot be opened or used, or holds nothing for this device
    Erase,
    Write,
    Read,
    Mismatch, ///< device memory differs from the image
    Interrupted,
    Crashed,
    TimedOut,
    Unsaved, ///< memory was read but not saved
    Failed,  ///< status and output show none of the above
};

constexpr std::array<Verdict, 15> all_verdicts = {
    Verdict::Ok,       Verdict::Port,     Verdict::Silent,      Verdict::UnknownVersion,
    Verdict::Table,    Verdict::File,     Verdict::Erase,       Verdict::Write,
    Verdict::Read,     Verdict::Mismatch, Verdict::Interrupted, Verdict::Crashed,
    Verdict::TimedOut, Verdict::Unsaved,  Verdict::Failed};

/// Returns its name in displays and records, such as "unknown-version".
QString name_of(Verdict verdict);

} // namespace gang
