#include "inspect/ImageFacts.h"

#include "inspect/Figures.h"

#include <QJsonArray>

namespace inspect
{

namespace
{

constexpr std::size_t most_segments_in_text = 12;

/// JSON knows one kind of number, which holds whole ones up to 2 to the 53rd.
QJsonValue number(quint64 value)
{
    return {static_cast<double>(value)};
}

const char* name_of_type(std::size_t type)
{
    static constexpr const char* names[] = {"data",
                                            "end",
                                            "extended_segment_address",
                                            "start_segment_address",
                                            "extended_linear_address",
                                            "start_linear_address"};
    return type < std::size(names) ? names[type] : "unknown";
}

QString crc_text(const ImageFile& image)
{
    return QString::number(image.crc32, 16).rightJustified(8, QLatin1Char('0'));
}

QJsonObject records_json(const ImageFile& image)
{
    std::array<quint64, 7> sums{};
    for (std::size_t type = 0; type < image.records.size(); ++type) {
        sums.at(std::min(type, sums.size() - 1)) += image.records.at(type);
    }
    QJsonObject object;
    for (std::size_t type = 0; type < sums.size(); ++type) {
        object.insert(QLatin1String(name_of_type(type)), number(sums.at(type)));
    }
    return object;
}

QJsonObject units_json(const UnitCount& units)
{
    return {{QStringLiteral("touched"), number(units.touched())},
            {QStringLiteral("partly_filled"), number(units.partial())}};
}

QString records_text(const ImageFile& image)
{
    const QJsonObject sums = records_json(image);
    QStringList parts;
    for (std::size_t type = 0; type < 7; ++type) {
        const QString name = QLatin1String(name_of_type(type));
        const auto count = static_cast<quint64>(sums.value(name).toDouble());
        if (count != 0) {
            parts << QStringLiteral("%1 %2").arg(count).arg(
                QString(name).replace(QLatin1Char('_'), QLatin1Char(' ')));
        }
    }
    return parts.isEmpty() ? QStringLiteral("none") : parts.join(QStringLiteral(", "));
}

void print_segments(TextPage& page, const ImageFile& image)
{
    QString label = QStringLiteral("segments");
    for (std::size_t i = 0; i < std::min(image.segments.size(), most_segments_in_text); ++i) {
        const Segment& segment = image.segments.at(i);
        page.labelled(label, QStringLiteral("%1 to %2, %3")
                                 .arg(address_text(segment.start), address_text(segment.end),
                                      size_text(segment.end - segment.start)));
        label.clear();
    }
    if (image.segments.size() > most_segments_in_text) {
        page.labelled(
            label,
            QStringLiteral("and %1 more").arg(image.segments.size() - most_segments_in_text));
    }
}

void print_units(TextPage& page, const char* label, const UnitCount& units)
{
    if (units.touched() != 0) {
        page.labelled(QLatin1String(label), QStringLiteral("%1 touched, %2 of them partly filled")
                                                .arg(units.touched())
                                                .arg(units.partial()));
    }
}

void print_fit(TextPage& page, const DeviceFit& device)
{
    for (const Area area : areas) {
        const quint64 bytes = device.bytes.at(static_cast<std::size_t>(area));
        if (bytes != 0) {
            page.labelled(name_of(area), count_text(bytes, "byte"));
        }
    }
    print_units(page, "pages", device.pages);
    print_units(page, "flash rows", device.flash_rows);
    print_units(page, "EEPROM rows", device.eeprom_rows);
}

} // namespace

QJsonObject json_of(const ImageFile& image, const DeviceFit* device)
{
    QJsonArray segments;
    for (const Segment& segment : image.segments) {
        segments.append(QJsonObject{{QStringLiteral("start"), number(segment.start)},
                                    {QStringLiteral("end"), number(segment.end)}});
    }
    QJsonObject object = {
        {QStringLiteral("file"), image.path},
        {QStringLiteral("file_size"), number(image.file_size)},
        {QStringLiteral("loads"), image.loads},
        {QStringLiteral("bytes"), number(image.bytes())},
        {QStringLiteral("segments"), segments},
        {QStringLiteral("records"), records_json(image)},
        {QStringLiteral("start_address"),
         image.start_address ? number(*image.start_address) : QJsonValue()},
        {QStringLiteral("sha256"), QString::fromLatin1(image.sha256.toHex())},
        {QStringLiteral("crc32"), crc_text(image)},
    };
    if (device != nullptr) {
        QJsonObject sums;
        for (const Area area : areas) {
            sums.insert(name_of(area), number(device->bytes.at(static_cast<std::size_t>(area))));
        }
        object.insert(QStringLiteral("areas"), sums);
        object.insert(QStringLiteral("pages"), units_json(device->pages));
        object.insert(QStringLiteral("flash_rows"), units_json(device->flash_rows));
        object.insert(QStringLiteral("eeprom_rows"), units_json(device->eeprom_rows));
    }
    return object;
}

void print(TextPage& page, const ImageFile& image, const DeviceFit* device)
{
    page.heading(image.path);
    page.labelled(QStringLiteral("file"),
                  QStringLiteral("%1, sha256").arg(count_text(image.file_size, "byte")));
    page.labelled(QString(), QString::fromLatin1(image.sha256.toHex()));
    page.labelled(QStringLiteral("records"), records_text(image));
    if (image.start_address) {
        page.labelled(QStringLiteral("start"), address_text(*image.start_address));
    }
    if (!image.loads) {
        page.labelled(QStringLiteral("image"), QStringLiteral("refused by the uploader"));
        return;
    }
    page.labelled(
        QStringLiteral("image"),
        QStringLiteral("%1, crc32 %2").arg(count_text(image.bytes(), "byte"), crc_text(image)));
    print_segments(page, image);
    if (device != nullptr) {
        print_fit(page, *device);
    }
}

} // namespace inspect
