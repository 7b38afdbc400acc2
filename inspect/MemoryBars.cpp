#include "inspect/MemoryBars.h"

#include "inspect/Figures.h"

#include <algorithm>

namespace inspect
{

namespace
{

/// Data farther apart than this are shown separately.
constexpr quint64 widest_gap = 64 * 1024;
constexpr std::size_t most_clusters = 6;

/// The ranges from the first that ends above `address` on.
std::vector<Segment>::const_iterator first_above(const std::vector<Segment>& image, quint64 address)
{
    return std::upper_bound(
        image.begin(), image.end(), address,
        [](quint64 value, const Segment& segment) { return value < segment.end; });
}

std::vector<Segment> clipped(const std::vector<Segment>& image, const Segment& range)
{
    std::vector<Segment> part;
    for (auto it = first_above(image, range.start); it != image.end() && it->start < range.end;
         ++it) {
        part.push_back({std::max(it->start, range.start), std::min(it->end, range.end)});
    }
    return part;
}

void add_memory(MemoryPicture& picture, const Profile& profile, const QString& name,
                const Segment& range, quint64 page, const std::vector<Segment>& image)
{
    if (range.start < range.end) {
        picture.bars.push_back(
            {QStringLiteral("%1, %2").arg(name, size_text(range.end - range.start)), range, page,
             cut(profile, {range}), clipped(image, range)});
    }
}

void add_memories(MemoryPicture& picture, const Profile& profile, const std::vector<Segment>& image)
{
    if (profile.has_memory_type(MEMORY_FLASH)) {
        const quint64 begin = profile.get_min_address(MEMORY_FLASH);
        const quint64 bootloader = profile.attributes[Profile::bootloader_start_address];
        add_memory(picture, profile, QStringLiteral("flash"),
                   {std::min(begin, bootloader), profile.get_max_address(MEMORY_FLASH)},
                   profile.get_page_size(MEMORY_FLASH), image);
    }
    if (profile.has_memory_type(MEMORY_EEPROM)) {
        add_memory(picture, profile, QStringLiteral("EEPROM"),
                   {profile.get_min_address(MEMORY_EEPROM), profile.get_max_address(MEMORY_EEPROM)},
                   0, image);
    }
}

bool is_shown(const MemoryPicture& picture, const AreaPiece& piece)
{
    return std::any_of(picture.bars.begin(), picture.bars.end(), [&](const MemoryBar& bar) {
        return bar.range.start <= piece.range.start && piece.range.end <= bar.range.end;
    });
}

/// The data outside of all memories.
std::vector<Segment> rest_of(const MemoryPicture& picture, const Profile& profile,
                             const std::vector<Segment>& image)
{
    std::vector<Segment> rest;
    for (const AreaPiece& piece : cut(profile, image)) {
        if (!is_shown(picture, piece)) {
            rest.push_back(piece.range);
        }
    }
    return rest;
}

void add_clusters(MemoryPicture& picture, const char* name, const std::vector<Segment>& image)
{
    std::size_t clusters = 0;
    for (auto it = image.begin(); it != image.end();) {
        auto next = it + 1;
        while (next != image.end() && next->start - (next - 1)->end <= widest_gap) {
            ++next;
        }
        if (++clusters > most_clusters) {
            ++picture.left_out;
        } else {
            const Segment range{it->start, (next - 1)->end};
            picture.bars.push_back({QStringLiteral("%1, %2").arg(
                                        QLatin1String(name), size_text(range.end - range.start)),
                                    range,
                                    0,
                                    {{range, Area::Outside}},
                                    std::vector<Segment>(it, next)});
        }
        it = next;
    }
}

} // namespace

MemoryPicture picture_of(const Profile* profile, const std::vector<Segment>& image)
{
    MemoryPicture picture;
    if (profile == nullptr) {
        add_clusters(picture, "image", image);
    } else {
        add_memories(picture, *profile, image);
        add_clusters(picture, "outside the device", rest_of(picture, *profile, image));
    }
    return picture;
}

quint64 covered(const std::vector<Segment>& image, quint64 start, quint64 end)
{
    quint64 bytes = 0;
    for (auto it = first_above(image, start); it != image.end() && it->start < end; ++it) {
        bytes += std::min(it->end, end) - std::max(it->start, start);
    }
    return bytes;
}

} // namespace inspect
