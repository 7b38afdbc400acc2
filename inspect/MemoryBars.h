#pragma once

#include "inspect/DeviceFit.h"

#include <vector>

namespace inspect
{

/// A stretch of addresses that a picture shows as a whole: a memory of the device, or where an
/// image has data.
struct MemoryBar {
    QString title;
    Segment range;
    quint64 page = 0;             ///< bytes; 0 where there are no pages
    std::vector<AreaPiece> areas; ///< all of the range, in ascending order
    std::vector<Segment> image;   ///< what the image has of it
};

/// The bars of an image, beside those of a device when one is given. Data that lie far from each
/// other get bars of their own; `left_out` counts what would be too many.
struct MemoryPicture {
    std::vector<MemoryBar> bars;
    std::size_t left_out = 0;
};

MemoryPicture picture_of(const Profile* profile, const std::vector<Segment>& image);

/// How many bytes of [start, end) the ascending stretches cover.
quint64 covered(const std::vector<Segment>& image, quint64 start, quint64 end);

} // namespace inspect
