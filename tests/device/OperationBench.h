#pragma once

#include "memory/MemoryMap.h"
#include "tests/device/OperationImages.h"
#include "tests/support/DeviceOnLine.h"
#include "tests/support/Progress.h"

namespace test
{

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

} // namespace test
