#include "inspect/MapSvg.h"

#include "inspect/Figures.h"

#include <algorithm>
#include <array>

namespace inspect
{

namespace
{

constexpr double page_width = 800;
constexpr double margin = 24;
constexpr double bar_width = page_width - 2 * margin;
constexpr double first_bar_top = 56;
constexpr double bar_height = 128; ///< with title, addresses and the space to the next
constexpr double legend_height = 52;
constexpr double narrowest_page = 3;
constexpr double label_width = 76;

const char* const style = "<style>\n"
                          "text{font:12px sans-serif;fill:#1c1c1c}\n"
                          ".title{font-weight:bold;font-size:15px}\n"
                          ".name{font-weight:bold}\n"
                          ".address{font:11px monospace}\n"
                          ".sheet{fill:#ffffff}\n"
                          ".frame{fill:none;stroke:#555555}\n"
                          ".tick{stroke:#555555;stroke-width:0.6}\n"
                          ".encrypted{fill:#9db8e8}\n"
                          ".unencrypted{fill:#bfe3c0}\n"
                          ".eeprom{fill:#ecd9a0}\n"
                          ".bootloader{fill:#c9c9c9}\n"
                          ".outside{fill:#f2b8b5}\n"
                          ".image{fill:#1f4e9c}\n"
                          ".lost{fill:#c0261c}\n"
                          "@media (prefers-color-scheme:dark){\n"
                          "text{fill:#ececec}\n"
                          ".sheet{fill:#1b1d21}\n"
                          ".frame{stroke:#a0a0a0}\n"
                          ".tick{stroke:#a0a0a0}\n"
                          ".encrypted{fill:#3b5790}\n"
                          ".unencrypted{fill:#3a6b3f}\n"
                          ".eeprom{fill:#7a6526}\n"
                          ".bootloader{fill:#565656}\n"
                          ".outside{fill:#7d3430}\n"
                          ".image{fill:#9cc2ff}\n"
                          ".lost{fill:#ff8a80}\n"
                          "}\n"
                          "</style>\n";

QString number(double value)
{
    return QString::number(value, 'f', 2);
}

class Drawing
{
public:
    void rectangle(const char* kind, double x, double y, double width, double height)
    {
        m_text +=
            QStringLiteral("<rect class=\"%1\" x=\"%2\" y=\"%3\" width=\"%4\" height=\"%5\"/>\n")
                .arg(QLatin1String(kind), number(x), number(y), number(width), number(height));
    }

    void line(double x, double y, double height)
    {
        m_text += QStringLiteral("<path class=\"tick\" d=\"M%1 %2v%3\"/>\n")
                      .arg(number(x), number(y), number(height));
    }

    void text(const char* kind, double x, double y, const QString& words,
              const char* anchor = "start")
    {
        m_text +=
            QStringLiteral("<text class=\"%1\" x=\"%2\" y=\"%3\" text-anchor=\"%4\">%5</text>\n")
                .arg(QLatin1String(kind), number(x), number(y), QLatin1String(anchor),
                     printable(words).toHtmlEscaped());
    }

    const QString& content() const { return m_text; }

private:
    QString m_text;
};

const char* class_of(Area area)
{
    switch (area) {
    case Area::Encrypted:
        return "encrypted";
    case Area::Unencrypted:
        return "unencrypted";
    case Area::Eeprom:
        return "eeprom";
    case Area::Bootloader:
        return "bootloader";
    case Area::Outside:
        break;
    }
    return "outside";
}

/// Draws one bar, which begins at a height of the page.
class BarDrawing
{
public:
    BarDrawing(Drawing& drawing, const MemoryBar& bar, double top, bool has_device)
        : m_drawing(drawing),
          m_bar(bar),
          m_top(top),
          m_has_device(has_device)
    {
    }

    void draw()
    {
        m_drawing.text("name", margin, m_top + 12, m_bar.title);
        draw_areas();
        draw_pages();
        draw_image();
        m_drawing.rectangle("frame", margin, m_top + 20, bar_width, 56);
        draw_addresses();
    }

private:
    double x_of(quint64 address) const
    {
        return margin + bar_width * static_cast<double>(address - m_bar.range.start) /
                            static_cast<double>(m_bar.range.end - m_bar.range.start);
    }

    void draw_areas()
    {
        for (const AreaPiece& piece : m_bar.areas) {
            const char* const kind = m_has_device ? class_of(piece.area) : "sheet";
            m_drawing.rectangle(kind, x_of(piece.range.start), m_top + 20,
                                x_of(piece.range.end) - x_of(piece.range.start), 56);
        }
    }

    void draw_pages()
    {
        const quint64 page = m_bar.page;
        const quint64 size = m_bar.range.end - m_bar.range.start;
        if (page == 0 ||
            bar_width * static_cast<double>(page) / static_cast<double>(size) < narrowest_page) {
            return;
        }
        for (quint64 at = (m_bar.range.start / page + 1) * page; at < m_bar.range.end; at += page) {
            m_drawing.line(x_of(at), m_top + 20, 12);
        }
    }

    /// Pieces narrower than a pixel are widened and neighbours share pixels, so a million pieces
    /// make no more rectangles than the bar has pixels.
    void draw_image()
    {
        constexpr double dot = 0.5;
        double drawn_to = margin - dot;
        for (const Segment& piece : m_bar.image) {
            for (const AreaPiece& area : m_bar.areas) {
                const quint64 start = std::max(piece.start, area.range.start);
                const quint64 end = std::min(piece.end, area.range.end);
                if (start >= end || x_of(end) <= drawn_to) {
                    continue;
                }
                const bool lost =
                    m_has_device && (area.area == Area::Bootloader || area.area == Area::Outside);
                const double x = std::min(x_of(start), margin + bar_width - dot);
                const double width = std::max(dot, x_of(end) - x);
                m_drawing.rectangle(lost ? "lost" : "image", x, m_top + 36, width, 36);
                drawn_to = x + width;
            }
        }
    }

    /// At every limit, as far as there is room, on two lines.
    void draw_addresses()
    {
        std::vector<quint64> addresses = {m_bar.range.start};
        for (const AreaPiece& piece : m_bar.areas) {
            addresses.push_back(piece.range.end);
        }
        std::array<double, 2> free_from = {margin, margin};
        const double last_begins = margin + bar_width - label_width;
        for (const quint64 address : addresses) {
            const double x = x_of(address);
            const bool is_last = address == m_bar.range.end;
            const double begin = is_last ? last_begins : std::min(x, last_begins);
            for (std::size_t row = 0; row < free_from.size(); ++row) {
                const bool keeps_last_free =
                    is_last || row == 1 || begin + label_width <= last_begins;
                if (begin >= free_from[row] && keeps_last_free) {
                    m_drawing.line(x, m_top + 76, row == 0 ? 5 : 19);
                    m_drawing.text("address", is_last ? margin + bar_width : begin,
                                   m_top + (row == 0 ? 92 : 106), address_text(address),
                                   is_last ? "end" : "start");
                    free_from[row] = begin + label_width;
                    break;
                }
            }
        }
    }

    Drawing& m_drawing;
    const MemoryBar& m_bar;
    double m_top;
    bool m_has_device;
};

void draw_legend(Drawing& drawing, double top, bool has_device)
{
    struct Entry {
        const char* kind;
        const char* text;
    };

    std::vector<Entry> entries = {{"image", "image"}};
    if (has_device) {
        entries = {{"encrypted", "encrypted"},    {"unencrypted", "unencrypted"},
                   {"eeprom", "EEPROM"},          {"bootloader", "bootloader"},
                   {"outside", "outside"},        {"image", "image"},
                   {"lost", "image, not written"}};
    }
    double x = margin;
    for (const Entry& entry : entries) {
        drawing.rectangle(entry.kind, x, top, 14, 14);
        drawing.rectangle("frame", x, top, 14, 14);
        drawing.text("key", x + 20, top + 12, QLatin1String(entry.text));
        x += 34 + 7.0 * static_cast<double>(qstrlen(entry.text));
    }
    drawing.text("key", margin, top + 32,
                 QStringLiteral("Each bar is to scale. Ticks at its top are pages%1")
                     .arg(QLatin1String(has_device ? ", where there is room for them." : ".")));
}

} // namespace

QByteArray svg_of(const MemoryPicture& picture, const QString& title)
{
    const bool has_device =
        std::any_of(picture.bars.begin(), picture.bars.end(), [](const MemoryBar& bar) {
            return std::any_of(bar.areas.begin(), bar.areas.end(),
                               [](const AreaPiece& piece) { return piece.area != Area::Outside; });
        });
    Drawing drawing;
    double top = first_bar_top;
    for (const MemoryBar& bar : picture.bars) {
        BarDrawing(drawing, bar, top, has_device).draw();
        top += bar_height;
    }
    draw_legend(drawing, top, has_device);
    const double height = top + legend_height;
    const QString head =
        QStringLiteral("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%1\" height=\"%2\" "
                       "viewBox=\"0 0 %1 %2\">\n")
            .arg(page_width)
            .arg(height);
    Drawing front;
    front.rectangle("sheet", 0, 0, page_width, height);
    front.text("title", margin, 32, title);
    return (head + QLatin1String(style) + front.content() + drawing.content() +
            QLatin1String("</svg>\n"))
        .toUtf8();
}

} // namespace inspect
