#include "tests/inspect/InspectTest.h"
#include "tests/inspect/ProcessRun.h"

#include <QRegularExpression>
#include <QXmlStreamReader>

#include <algorithm>

using namespace test;

// The drawing of a memory, as it is and as a renderer shows it.

namespace
{

class Drawing : public InspectTest
{
protected:
    /// Draws with these words and returns the drawing's path.
    QString draw(const QString& words) const
    {
        QString drawing = path(QStringLiteral("a.svg"));
        const inspect::Outcome outcome = inspect_run(words.split(QLatin1Char(' ')) +
                                                     QStringList{QStringLiteral("--svg"), drawing});
        EXPECT_EQ(outcome.err.toStdString(), "");
        return drawing;
    }

    QByteArray drawing(const char* words) const
    {
        draw(QString::fromLatin1(words));
        return file(QStringLiteral("a.svg"));
    }
};

struct Box {
    double x;
    double y;
    double width;
    double height;
};

struct Parsed {
    double width = 0;
    double height = 0;
    std::vector<std::pair<QString, Box>> boxes; ///< rectangles by class
    QStringList texts;
};

Parsed parse(const QByteArray& svg)
{
    Parsed parsed;
    QXmlStreamReader reader(svg);
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement) {
            continue;
        }
        const QXmlStreamAttributes attributes = reader.attributes();
        const auto number = [&](const char* name) {
            return attributes.value(QLatin1String(name)).toDouble();
        };
        if (reader.name() == QLatin1String("svg")) {
            parsed.width = number("width");
            parsed.height = number("height");
        } else if (reader.name() == QLatin1String("rect")) {
            parsed.boxes.emplace_back(
                attributes.value(QLatin1String("class")).toString(),
                Box{number("x"), number("y"), number("width"), number("height")});
        } else if (reader.name() == QLatin1String("text")) {
            parsed.texts << reader.readElementText();
        }
    }
    EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
    return parsed;
}

std::vector<Box> boxes(const Parsed& parsed, const char* kind)
{
    std::vector<Box> found;
    for (const auto& [name, box] : parsed.boxes) {
        if (name == QLatin1String(kind)) {
            found.push_back(box);
        }
    }
    return found;
}

/// A picture in the plainest of formats: three bytes per dot.
struct Picture {
    int width = 0;
    int height = 0;
    QByteArray dots;

    QByteArray dot(int x, int y) const { return dots.mid(3 * (y * width + x), 3); }
};

const char* const blink_in_device =
    "image examples/blink.hex --table examples/device.txt --device 0110";

} // namespace

TEST_F(Drawing, LeavesNothingOutsideOfItsSheet)
{
    for (const char* words :
         {blink_in_device, "image examples/blink.hex",
          "image examples/siskin-64.hex --table examples/device.txt --device 0110",
          "image examples/dunlin-48.hex --table examples/device.txt --device 0121"}) {
        const Parsed parsed = parse(drawing(words));
        EXPECT_GT(parsed.boxes.size(), 5U);
        for (const auto& [kind, box] : parsed.boxes) {
            EXPECT_GE(box.x, 0) << kind.toStdString();
            EXPECT_GE(box.y, 0) << kind.toStdString();
            EXPECT_GT(box.width, 0) << kind.toStdString();
            EXPECT_LE(box.x + box.width, parsed.width + 0.01) << kind.toStdString();
            EXPECT_LE(box.y + box.height, parsed.height + 0.01) << kind.toStdString();
        }
    }
}

TEST_F(Drawing, IsToScale)
{
    const Parsed parsed = parse(drawing(blink_in_device));
    const std::vector<Box> encrypted = boxes(parsed, "encrypted");
    const std::vector<Box> unencrypted = boxes(parsed, "unencrypted");
    const std::vector<Box> bootloader = boxes(parsed, "bootloader");
    // The last of each is in the legend.
    EXPECT_NEAR(unencrypted.front().width / bootloader.front().width, 14.0 / 2, 0.01);
    EXPECT_NEAR(encrypted.front().width / bootloader.front().width, 16.0 / 2, 0.01);
    EXPECT_NEAR(encrypted.front().x, unencrypted.front().x + unencrypted.front().width, 0.02);
}

TEST_F(Drawing, NamesMemoriesAndTheirLimits)
{
    const QStringList texts = parse(drawing(blink_in_device)).texts;
    for (const char* text : {"flash, 32 KiB", "EEPROM, 512 bytes", "0x00000000", "0x00000800",
                             "0x00004000", "0x00008000", "0x00010000", "0x00010200", "encrypted",
                             "unencrypted", "bootloader", "image"}) {
        EXPECT_TRUE(texts.contains(QLatin1String(text))) << text;
    }
}

TEST_F(Drawing, ShowsWhatIsNotWritten)
{
    EXPECT_EQ(boxes(parse(drawing(blink_in_device)), "lost").size(), 1U); // the legend's
    EXPECT_GT(boxes(parse(drawing("image examples/siskin-64.hex --table examples/device.txt "
                                  "--device 0110")),
                    "lost")
                  .size(),
              1U);
}

TEST_F(Drawing, IsWellFormedWhateverFilesAndDevicesAreCalled)
{
    const QString table = put_file(QStringLiteral("<&>\".txt"), table_row({{3, "<L&\x01\">"}}));
    const QString image =
        put_file(QStringLiteral("<&>\".hex"), hex_record(0, 0x800, "a") + end_record);
    const QString drawing = path(QStringLiteral("b.svg"));
    EXPECT_EQ(inspect_run({QStringLiteral("image"), image, QStringLiteral("--table"), table,
                           QStringLiteral("--svg"), drawing})
                  .status,
              0);
    EXPECT_TRUE(
        parse(file(QStringLiteral("b.svg"))).texts.first().contains(QLatin1String("<L&?\">")));
}

TEST_F(Drawing, OfAMillionPiecesStaysSmall)
{
    QByteArray image;
    for (unsigned int address = 0x800; address < 0x8000; address += 2) {
        image += hex_record(0, address, "a");
    }
    const QString table = put_file(QStringLiteral("device.txt"), table_row());
    const QString drawing = path(QStringLiteral("b.svg"));
    inspect_run({QStringLiteral("image"), put_file(QStringLiteral("a.hex"), image + end_record),
                 QStringLiteral("--table"), table, QStringLiteral("--svg"), drawing});
    EXPECT_LT(file(QStringLiteral("b.svg")).size(), 400 * 1024);
}

TEST_F(Drawing, IsRenderedInItsSizeWithAllItsParts)
{
    const QString svg = draw(QString::fromLatin1(blink_in_device));
    const Parsed parsed = parse(file(QStringLiteral("a.svg")));
    const QString png = path(QStringLiteral("a.png"));
    ASSERT_EQ(run_process(QStringLiteral(RSVG_CONVERT), {svg, QStringLiteral("-o"), png}).status,
              0);
    const ProcessResult read =
        run_process(QStringLiteral(PYTHON), {QStringLiteral("tests/inspect/png_dots.py"), png});
    ASSERT_EQ(read.status, 0) << read.err.constData();
    const QList<QByteArray> size = read.out.left(read.out.indexOf('\n')).split(' ');
    const Picture picture{size.at(0).toInt(), size.at(1).toInt(),
                          read.out.mid(read.out.indexOf('\n') + 1)};
    ASSERT_EQ(picture.width, static_cast<int>(parsed.width));
    ASSERT_EQ(picture.height, static_cast<int>(parsed.height));
    ASSERT_EQ(picture.dots.size(), 3 * picture.width * picture.height);
    // A rim of the sheet's colour all around: nothing is cut off.
    const QByteArray sheet = picture.dot(0, 0);
    for (int x = 0; x < picture.width; ++x) {
        ASSERT_EQ(picture.dot(x, 0), sheet);
        ASSERT_EQ(picture.dot(x, picture.height - 1), sheet);
    }
    for (int y = 0; y < picture.height; ++y) {
        ASSERT_EQ(picture.dot(0, y), sheet);
        ASSERT_EQ(picture.dot(picture.width - 1, y), sheet);
    }
    // The middle of every part shows its colour.
    const auto colour = [&](const Box& box) {
        return picture.dot(static_cast<int>(box.x + box.width / 2),
                           static_cast<int>(box.y + box.height / 2));
    };
    const std::vector<Box> image = boxes(parsed, "image");
    const auto widest = std::max_element(
        image.begin(), image.end(), [](const Box& a, const Box& b) { return a.width < b.width; });
    EXPECT_EQ(colour(*widest), QByteArray::fromHex("1f4e9c"));
    EXPECT_EQ(colour(boxes(parsed, "bootloader").front()), QByteArray::fromHex("c9c9c9"));
}
