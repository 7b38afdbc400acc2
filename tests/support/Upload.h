#pragma once

#include "tests/support/SignalRecorder.h"

#include <string>
#include <vector>

/// What a recorder shows of an upload that reports these counts of processed bytes.
inline SignalRecorder::Lines upload(const std::vector<unsigned int>& processed, unsigned int total)
{
    SignalRecorder::Lines lines;
    for (const unsigned int count : processed) {
        lines.push_back("sig_upload_progress " + std::to_string(count) + " of " +
                        std::to_string(total));
    }
    return lines;
}

/// The same for one that succeeds.
inline SignalRecorder::Lines completed_upload(const std::vector<unsigned int>& processed,
                                              unsigned int total)
{
    SignalRecorder::Lines lines = upload(processed, total);
    lines.emplace_back("sig_operation_complete");
    return lines;
}

/// And for one that fails after these counts.
inline SignalRecorder::Lines failed_upload(const std::vector<unsigned int>& processed,
                                           unsigned int total, const std::string& message)
{
    SignalRecorder::Lines lines = upload(processed, total);
    lines.push_back("sig_error " + message);
    return lines;
}
