#pragma once

#include "inspect/DeviceFit.h"

#include <vector>

namespace inspect
{

/// A range of addresses that a map shows as one bar: a memory of the device, or data of an image.
struct MemoryBar {
    QString title;
    Segment range;
    quint64 page = 0;             ///< bytes; 0 where there are no pages
    std::vector<AreaPiece> areas; ///< all of the range, in ascending order
    std::vector<Segment> image;   ///< the parts that the image has
};

/// The bars of an image, and of a device if one is given. Data far from each other get separate
/// bars; `left_out` counts those that would be too many.
struct MemoryPicture {
    std::vector<MemoryBar> bars;
    std::size_t left_out = 0;
};

MemoryPicture picture_of(const Profile* profile, const std::vector<Segment>& image);

/// The number of bytes of [start, end) that the ascending ranges cover.
quint64 covered(const std::vector<Segment>& image, quint64 start, quint64 end);

} // namespace inspect
