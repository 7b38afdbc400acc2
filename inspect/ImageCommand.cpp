#include "inspect/CommandWords.h"
#include "inspect/DeviceVersion.h"
#include "inspect/ImageFacts.h"
#include "inspect/InspectedImage.h"
#include "inspect/MapSvg.h"
#include "inspect/MapText.h"
#include "inspect/OutputFile.h"
#include "inspect/Subcommand.h"
#include "inspect/UsageError.h"

#include <QJsonArray>

#include <algorithm>
#include <iterator>
#include <memory>

namespace inspect
{

namespace
{

/// The device that images are looked at against, and the table that it comes from.
struct Device {
    TableFile table;
    const TableRow* row = nullptr;

    const Profile* profile() const { return row == nullptr ? nullptr : row->profile.get(); }
};

/// Without --table and --device there is none.
std::unique_ptr<Device> device_of(const CommandWords& words)
{
    const auto path = words.value("table");
    const auto version = words.value("device");
    auto device = std::make_unique<Device>();
    if (!path && !version) {
        return device;
    }
    device->table = readable_table(path.value_or(QStringLiteral("device.txt")));
    device->row = version ? &row_for(device->table, *version) : &only_row(device->table);
    return device;
}

QJsonObject facts_of(const std::vector<std::shared_ptr<const InspectedImage>>& images,
                     const Device& device)
{
    QJsonArray all;
    for (const auto& inspected : images) {
        all.append(json_of(inspected->image, inspected->fit ? &*inspected->fit : nullptr));
    }
    QJsonObject facts =
        images.size() == 1 ? all.first().toObject() : QJsonObject{{QStringLiteral("images"), all}};
    if (device.row != nullptr) {
        facts.insert(QStringLiteral("device"),
                     QJsonObject{{QStringLiteral("version"), device.row->version().toUpper()},
                                 {QStringLiteral("name"), device.row->profile->name}});
    }
    return facts;
}

void print_images(TextPage& page, const std::vector<std::shared_ptr<const InspectedImage>>& images,
                  const Profile* profile)
{
    bool first = true;
    for (const auto& inspected : images) {
        if (!inspected->image.is_readable) {
            continue;
        }
        if (!first) {
            page.line();
        }
        first = false;
        print(page, inspected->image, inspected->fit ? &*inspected->fit : nullptr);
        print_map(page, picture_of(profile, inspected->image.segments), profile != nullptr);
    }
}

void write_picture(const QString& path, const QStringList& inputs, const InspectedImage& inspected,
                   const Device& device)
{
    QString title = inspected.image.path;
    if (device.row != nullptr) {
        title += QStringLiteral(" in ") + device.row->profile->name;
    }
    write_output(path, inputs,
                 svg_of(picture_of(device.profile(), inspected.image.segments), title));
}

Report run(const CommandWords& words)
{
    const QStringList files = words.files();
    const auto svg = words.value("svg");
    if (files.isEmpty()) {
        throw UsageError(QStringLiteral("image needs a file"));
    }
    if (svg && files.size() > 1) {
        throw UsageError(
            QStringLiteral("--svg draws one image, but %1 are named").arg(files.size()));
    }
    const std::shared_ptr<const Device> device = device_of(words);
    Report report;
    const std::vector<Problem>& found = device->table.problems;
    std::copy_if(found.begin(), found.end(), std::back_inserter(report.problems), ends_the_run);
    std::vector<std::shared_ptr<const InspectedImage>> images;
    for (const QString& file : files) {
        images.push_back(inspect_image(file, device->profile()));
        add_problems(report, *images.back());
    }
    report.facts = [images, device] {
        return facts_of(images, *device);
    };
    report.print_text = [images, device](TextPage& page) {
        print_images(page, images, device->profile());
    };
    if (svg && images.front()->image.is_readable) {
        write_picture(*svg, files + QStringList{device->table.path}, *images.front(), *device);
    }
    return report;
}

} // namespace

const Subcommand& image_command()
{
    static const Subcommand subcommand = {
        "image",
        "Check HEX files, alone or against a device, and show where they lie.",
        "Shows what is in Intel HEX files and what the uploader makes of them: segments, records,\n"
        "checksums, the first bad record, bytes that lie outside the device, a map.",
        "file...",
        "The images.",
        {
            {"table", "table", "Take the device from <table> instead of ./device.txt."},
            {"device", "version",
             "Compare with the device of <version>, in hexadecimal; needed when the table has more "
             "than one."},
            {"svg", "drawing", "Write a drawing of the memory to <drawing>."},
        },
        run,
    };
    return subcommand;
}

} // namespace inspect
