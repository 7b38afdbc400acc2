#pragma once

#include <QString>

#include <array>
#include <optional>

namespace gang
{

/// How a run ended. A run ends in exactly one of these.
enum class Verdict {
    Ok,
    Port,           ///< the port cannot be opened
    Silent,         ///< nobody answered the entry procedure
    UnknownVersion, ///< the table has no row for the version, or the version did not stay the same
    Table,          ///< the table cannot be read, or its figures cannot work
    File,           ///< a file cannot be opened or used, or holds nothing for this device
    Erase,
    Write,
    Read,
    Mismatch, ///< memory differs from the image
    Interrupted,
    Crashed,
    TimedOut,
    Unsaved, ///< memory was read and did not reach its file
    Failed,  ///< none of the above is shown by what the tool printed
};

constexpr std::array<Verdict, 15> all_verdicts = {
    Verdict::Ok,       Verdict::Port,     Verdict::Silent,      Verdict::UnknownVersion,
    Verdict::Table,    Verdict::File,     Verdict::Erase,       Verdict::Write,
    Verdict::Read,     Verdict::Mismatch, Verdict::Interrupted, Verdict::Crashed,
    Verdict::TimedOut, Verdict::Unsaved,  Verdict::Failed};

/// The word for it in displays and records, such as "unknown-version".
QString name_of(Verdict verdict);

} // namespace gang
