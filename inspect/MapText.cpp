#include "inspect/MapText.h"

#include "inspect/Figures.h"

#include <algorithm>

namespace inspect
{

namespace
{

constexpr quint64 cells_per_line = 64;
constexpr quint64 most_lines = 8;
constexpr quint64 smallest_cell = 16;

quint64 cell_size(const Segment& range)
{
    quint64 size = smallest_cell;
    while ((range.end - range.start + size - 1) / size > cells_per_line * most_lines) {
        size *= 2;
    }
    return size;
}

Area area_at(const MemoryBar& bar, quint64 address)
{
    const auto found =
        std::find_if(bar.areas.begin(), bar.areas.end(),
                     [address](const AreaPiece& piece) { return address < piece.range.end; });
    return found == bar.areas.end() ? Area::Outside : found->area;
}

/// One character: how much of the cell the image fills, and in which area.
QChar cell_text(const MemoryBar& bar, const Segment& cell)
{
    const quint64 filled = covered(bar.image, cell.start, cell.end);
    if (area_at(bar, cell.start) == Area::Bootloader) {
        return QLatin1Char(filled == 0 ? '-' : 'B');
    }
    if (filled == 0) {
        return QLatin1Char('.');
    }
    return QLatin1Char(filled == cell.end - cell.start ? '#' : '+');
}

Style style_of(QChar cell)
{
    switch (cell.unicode()) {
    case '#':
        return Style::Good;
    case '+':
    case 'B':
        return Style::Warning;
    default:
        return Style::Faint;
    }
}

/// Runs of the same character share one change of colour.
QString styled_cells(const TextPage& page, const QString& cells)
{
    QString text;
    for (int begin = 0; begin < cells.size();) {
        int end = begin + 1;
        while (end < cells.size() && cells.at(end) == cells.at(begin)) {
            ++end;
        }
        text += page.styled(cells.mid(begin, end - begin), style_of(cells.at(begin)));
        begin = end;
    }
    return text;
}

void print_bar(TextPage& page, const MemoryBar& bar)
{
    const quint64 size = cell_size(bar.range);
    page.line();
    page.paragraph(QStringLiteral("%1, %2 per character:").arg(bar.title, size_text(size)), 2);
    for (quint64 line = bar.range.start; line < bar.range.end; line += size * cells_per_line) {
        QString cells;
        const quint64 line_end = std::min(bar.range.end, line + size * cells_per_line);
        for (quint64 start = line; start < line_end; start += size) {
            cells += cell_text(bar, {start, std::min(line_end, start + size)});
        }
        page.line(QStringLiteral("  ") + address_text(line) + QLatin1Char(' ') +
                  styled_cells(page, cells));
    }
}

} // namespace

void print_map(TextPage& page, const MemoryPicture& picture, bool has_device)
{
    for (const MemoryBar& bar : picture.bars) {
        print_bar(page, bar);
    }
    if (picture.bars.empty()) {
        return;
    }
    page.line();
    page.paragraph(
        QStringLiteral("# image, + partly image, . no image") +
            (has_device ? QStringLiteral(", - bootloader, B image in the bootloader") : QString()),
        2);
    if (picture.left_out != 0) {
        page.paragraph(QStringLiteral("Not shown: %1 of the image.")
                           .arg(count_text(picture.left_out, "further part")),
                       2);
    }
}

} // namespace inspect
