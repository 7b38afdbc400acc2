#pragma once

#include "memory/MemoryMap.h"
#include "tests/device/OperationImages.h"
#include "tests/support/DeviceOnLine.h"

/// A device and an image to write to it or to compare it with.
class OperationBench
{
public:
    explicit OperationBench(const char* name, const Extents& extents = {})
        : line(name),
          image(image_of(extents))
    {
    }

    /// Makes the device hold the image.
    void install_image()
    {
        for (const auto& blob : image.blobs()) {
            QByteArray bytes;
            blob->read(0, blob->size(), bytes);
            line.simulated.memory().preset(blob->address, bytes);
        }
    }

    bool verify(bool encrypted = true, bool unencrypted = true)
    {
        return line.device.verify_firmware(&image, abort, encrypted, unencrypted);
    }

    bool write_with_verify(bool skip_compare, bool encrypted = true, bool unencrypted = true)
    {
        return line.device.write_with_verify(&image, abort, encrypted, unencrypted, skip_compare);
    }

    DeviceOnLine line;
    MemoryMap image;
    bool abort = false;
};

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
