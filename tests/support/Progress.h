#pragma once

#include "tests/support/SignalRecorder.h"

#include <string>
#include <vector>

namespace test
{

// The lines of a SignalRecorder for an operation on a whole memory.

/// The signals of an operation that reports these counts of bytes, one after the other.
inline SignalRecorder::Lines
progress(const std::string& signal, const std::vector<unsigned int>& processed, unsigned int total)
{
    SignalRecorder::Lines lines;
    for (const unsigned int count : processed) {
        lines.push_back(signal + ' ' + std::to_string(count) + " of " + std::to_string(total));
    }
    return lines;
}

inline SignalRecorder::Lines verify_progress(const std::vector<unsigned int>& processed,
                                             unsigned int total)
{
    return progress("sig_verify_progress", processed, total);
}

inline SignalRecorder::Lines upload_progress(const std::vector<unsigned int>& processed,
                                             unsigned int total)
{
    return progress("sig_upload_progress", processed, total);
}

inline SignalRecorder::Lines then(SignalRecorder::Lines lines, const std::string& line)
{
    lines.push_back(line);
    return lines;
}

inline SignalRecorder::Lines then_complete(const SignalRecorder::Lines& lines)
{
    return then(lines, "sig_operation_complete");
}

/// The signals of an upload that succeeds.
inline SignalRecorder::Lines completed_upload(const std::vector<unsigned int>& processed,
                                              unsigned int total)
{
    return then_complete(upload_progress(processed, total));
}

/// The signals of an upload that fails after these counts.
inline SignalRecorder::Lines failed_upload(const std::vector<unsigned int>& processed,
                                           unsigned int total, const std::string& message)
{
    return then(upload_progress(processed, total), "sig_error " + message);
}

} // namespace test
