#include "inspect/DeviceFit.h"

#include "inspect/Figures.h"

#include <algorithm>

namespace inspect
{

namespace
{

constexpr quint64 end_of_addresses = quint64{1} << 32;

bool is_flash(Area area)
{
    return area == Area::Encrypted || area == Area::Unencrypted;
}

bool is_memory(Area area)
{
    return is_flash(area) || area == Area::Eeprom;
}

QString range_text(const Segment& range)
{
    return QStringLiteral("%1 to %2").arg(address_text(range.start), address_text(range.end));
}

class Fitter
{
public:
    Fitter(const Profile& profile, const ImageFile& image)
        : m_profile(profile),
          m_image(image),
          m_fit{{},
                UnitCount(profile.get_page_size(MEMORY_FLASH)),
                UnitCount(profile.get_row_size(MEMORY_FLASH)),
                UnitCount(profile.get_row_size(MEMORY_EEPROM)),
                cut(profile, image.segments),
                {}}
    {
    }

    DeviceFit fit();

private:
    void count();
    void check_ignored(Area area, Code code, const char* where);
    bool is_entered(Area area) const;
    void check_crossings();
    void check_crossing(const Segment& blob);
    void check_rows();
    void check_row(MemoryType memory, quint64 first);
    void add(Code code, const QString& message, qint64 line = 0,
             const QString& uploader = QString());

    quint64 bytes(Area area) const { return m_fit.bytes.at(static_cast<std::size_t>(area)); }

    const Profile& m_profile;
    const ImageFile& m_image;
    DeviceFit m_fit;
};

DeviceFit Fitter::fit()
{
    count();
    check_ignored(Area::Outside, Code::OutsideDevice, "outside the device");
    check_ignored(Area::Bootloader, Code::InBootloader, "in the bootloader");
    check_crossings();
    check_rows();
    if (m_image.bytes() != 0 &&
        bytes(Area::Encrypted) + bytes(Area::Unencrypted) + bytes(Area::Eeprom) == 0) {
        add(Code::NothingInDevice, QStringLiteral("All of the %1 lie elsewhere.")
                                       .arg(count_text(m_image.bytes(), "byte")));
    }
    return std::move(m_fit);
}

void Fitter::count()
{
    for (const AreaPiece& piece : m_fit.pieces) {
        m_fit.bytes.at(static_cast<std::size_t>(piece.area)) += piece.range.end - piece.range.start;
        if (is_flash(piece.area)) {
            m_fit.pages.add(piece.range.start, piece.range.end);
            m_fit.flash_rows.add(piece.range.start, piece.range.end);
        } else if (piece.area == Area::Eeprom) {
            m_fit.eeprom_rows.add(piece.range.start, piece.range.end);
        }
    }
}

void Fitter::check_ignored(Area area, Code code, const char* where)
{
    const auto first = std::find_if(m_fit.pieces.begin(), m_fit.pieces.end(),
                                    [area](const AreaPiece& piece) { return piece.area == area; });
    if (first != m_fit.pieces.end()) {
        QString uploader; // of bytes in pieces of their own: the code's text
        if (is_entered(area)) {
            uploader = QStringLiteral("-w leaves them out and succeeds. -v and -wv fail on a piece "
                                      "that begins in a memory and goes on here.");
        }
        add(code,
            QStringLiteral("%1: %2 %3, the first at %4.")
                .arg(m_profile.name, count_text(bytes(area), "byte"), QLatin1String(where),
                     address_text(first->range.start)),
            line_of(m_image.path, first->range.start), uploader);
    }
}

/// Whether a piece that begins in flash or EEPROM stays there.
bool Fitter::is_entered(Area area) const
{
    const auto& blobs = m_image.image.blobs();
    return std::any_of(blobs.begin(), blobs.end(), [&](const auto& blob) {
        const Segment range{blob->address, quint64{blob->address} + blob->size()};
        const std::vector<AreaPiece> pieces = cut(m_profile, {range});
        return !pieces.empty() && is_memory(pieces.front().area) &&
               std::any_of(pieces.begin(), pieces.end(),
                           [area](const AreaPiece& piece) { return piece.area == area; });
    });
}

/// Pieces as the uploader has them: one begins at a limit only if a record does.
void Fitter::check_crossings()
{
    for (const auto& blob : m_image.image.blobs()) {
        check_crossing({blob->address, quint64{blob->address} + blob->size()});
    }
}

void Fitter::check_crossing(const Segment& blob)
{
    const std::vector<AreaPiece> pieces = cut(m_profile, {blob});
    const auto other = std::find_if(pieces.begin(), pieces.end(), [&](const AreaPiece& piece) {
        return piece.area != pieces.front().area;
    });
    if (other == pieces.end()) {
        return;
    }
    const Area from = pieces.front().area;
    QString uploader; // of a piece that begins in flash or EEPROM and leaves it: the code's text
    if (is_flash(from) && is_flash(other->area)) {
        uploader = QStringLiteral("Takes the whole piece for %1: -xe and -xu take or leave all of "
                                  "it in -v and -wv.")
                       .arg(name_of(from));
    } else if (from == Area::Bootloader || from == Area::Outside) {
        uploader = QStringLiteral("Takes the whole piece for something outside of the memories. "
                                  "-v and -wv leave all of it out; -w writes of it what lies in "
                                  "rows between other pieces.");
    }
    add(Code::AcrossLimit,
        QStringLiteral("%1: the piece from %2 begins in %3 and goes on in %4 at %5.")
            .arg(m_profile.name, range_text(blob), name_of(from), name_of(other->area),
                 address_text(other->range.start)),
        line_of(m_image.path, other->range.start), uploader);
}

/// Where -w begins: at the start of flash when the image's flash lies below the EEPROM.
void Fitter::check_rows()
{
    quint64 flash = end_of_addresses;
    quint64 eeprom = end_of_addresses;
    for (const auto& blob : m_image.image.blobs()) {
        const MemoryType memory = m_profile.get_memory_type(blob->address);
        if (blob->size() != 0 && memory != MEMORY_OTHER) {
            quint64& first = memory == MEMORY_FLASH ? flash : eeprom;
            first = std::min<quint64>(first, blob->address);
        }
    }
    if (flash >= m_profile.get_min_address(MEMORY_EEPROM)) {
        check_row(MEMORY_FLASH, flash);
    }
    check_row(MEMORY_EEPROM, eeprom);
}

void Fitter::check_row(MemoryType memory, quint64 first)
{
    const unsigned int row = m_profile.get_row_size(memory);
    if (first == end_of_addresses || row == 0 || first % row == 0) {
        return;
    }
    add(Code::NotOnRow,
        QStringLiteral("%1: the first byte in %2 is %3, which is not a multiple of the row of %4.")
            .arg(m_profile.name,
                 memory == MEMORY_FLASH ? QStringLiteral("flash") : QStringLiteral("EEPROM"),
                 address_text(first), size_text(row)),
        line_of(m_image.path, first));
}

void Fitter::add(Code code, const QString& message, qint64 line, const QString& uploader)
{
    m_fit.problems.push_back({code, message, {m_image.path, line, 0}, uploader, {}});
}

} // namespace

QString name_of(Area area)
{
    switch (area) {
    case Area::Encrypted:
        return QStringLiteral("encrypted");
    case Area::Unencrypted:
        return QStringLiteral("unencrypted");
    case Area::Eeprom:
        return QStringLiteral("eeprom");
    case Area::Bootloader:
        return QStringLiteral("bootloader");
    case Area::Outside:
        return QStringLiteral("outside");
    }
    return {};
}

Area area_of(const Profile& profile, quint64 address)
{
    if (address >= end_of_addresses) {
        return Area::Outside;
    }
    const auto byte = static_cast<unsigned int>(address);
    if (profile.is_flash(byte)) {
        return profile.is_unencrypted_flash(byte) ? Area::Unencrypted : Area::Encrypted;
    }
    if (profile.is_eeprom(byte)) {
        return Area::Eeprom;
    }
    const bool in_bootloader = profile.attributes[Profile::bootloader_start_address] <= byte &&
                               byte < profile.attributes[Profile::bootloader_end_address];
    return in_bootloader ? Area::Bootloader : Area::Outside;
}

std::vector<AreaPiece> cut(const Profile& profile, const std::vector<Segment>& segments)
{
    std::vector<quint64> limits(profile.boundaries.begin(), profile.boundaries.end());
    limits.push_back(end_of_addresses);
    std::sort(limits.begin(), limits.end());
    std::vector<AreaPiece> pieces;
    for (const Segment& segment : segments) {
        for (quint64 start = segment.start; start < segment.end;) {
            const auto limit = std::upper_bound(limits.begin(), limits.end(), start);
            const quint64 end = limit == limits.end() ? segment.end : std::min(segment.end, *limit);
            pieces.push_back({{start, end}, area_of(profile, start)});
            start = end;
        }
    }
    return pieces;
}

DeviceFit fit(const Profile& profile, const ImageFile& image)
{
    return Fitter(profile, image).fit();
}

} // namespace inspect
