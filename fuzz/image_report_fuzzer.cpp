#include "fuzz/MemoryFile.h"
#include "inspect/DeviceFit.h"
#include "inspect/ImageFacts.h"
#include "inspect/MapSvg.h"
#include "inspect/MapText.h"

#include <algorithm>
#include <numeric>

namespace
{

const Profile& device()
{
    static const Profile profile(
        QStringLiteral("0x0110 115200 LARK-32 0x8000 0x8000 0x0 0x800 0x400 0x80 2 2 0x80 "
                       "0xFFFF0000 2 0x10000 0x10200 1 1 0x10 0x10 0xFF000000 1 0x200 0x800 0x4000")
            .split(QLatin1Char(' ')));
    return profile;
}

/// Checks that a place is in the file or directly after its end.
void check_place(const inspect::Place& place, const QByteArray& text)
{
    const QList<QByteArray> lines = text.split('\n');
    must_hold(place.line >= 0 && place.line <= lines.size());
    must_hold(place.column >= 0);
    must_hold(place.line == 0 ||
              place.column <= lines.at(static_cast<int>(place.line - 1)).size() + 1);
}

bool loads(const QString& path)
{
    MemoryMap image(MemoryMap::default_chunk_size);
    return image.load_from_hex_file(path, device().boundaries);
}

void draw(const inspect::ImageFile& image, const inspect::DeviceFit* fit)
{
    const inspect::MemoryPicture picture =
        inspect::picture_of(fit == nullptr ? nullptr : &device(), image.segments);
    inspect::TextPage page(false);
    inspect::print(page, image, fit);
    inspect::print_map(page, picture, fit != nullptr);
    must_hold(!inspect::svg_of(picture, image.path).isEmpty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const bool silent = silence_debug_messages();
    static const MemoryFile file;
    must_hold(silent);
    const QByteArray text = bytes_of(data, size);
    file.fill(text);
    const inspect::ImageFile image = inspect::read_image(file.path(), device().boundaries);
    must_hold(image.is_readable && image.loads == loads(file.path()));
    const bool has_error = std::any_of(image.problems.begin(), image.problems.end(),
                                       [](const inspect::Problem& problem) {
                                           return problem.severity() == inspect::Severity::Error;
                                       });
    must_hold(image.loads || (has_error && image.segments.empty()));
    for (const inspect::Problem& problem : image.problems) {
        check_place(problem.place, text);
    }
    draw(image, nullptr);
    if (image.loads) {
        const inspect::DeviceFit fit = inspect::fit(device(), image);
        must_hold(std::accumulate(fit.bytes.begin(), fit.bytes.end(), quint64{0}) == image.bytes());
        draw(image, &fit);
    }
    return 0;
}
