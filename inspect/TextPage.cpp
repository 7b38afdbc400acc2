#include "inspect/TextPage.h"

#include "inspect/Figures.h"

#include <QStringList>

namespace inspect
{

namespace
{

const char* escape_of(Style style)
{
    switch (style) {
    case Style::Heading:
        return "\033[1m";
    case Style::Error:
        return "\033[1;31m";
    case Style::Warning:
        return "\033[33m";
    case Style::Good:
        return "\033[32m";
    case Style::Faint:
        return "\033[2m";
    case Style::Plain:
        break;
    }
    return "";
}

} // namespace

QString TextPage::styled(const QString& text, Style style) const
{
    const QLatin1String escape(m_colour ? escape_of(style) : "");
    return escape.isEmpty() ? text : escape + text + QLatin1String("\033[0m");
}

void TextPage::line(const QString& text)
{
    m_text += text + QLatin1Char('\n');
}

void TextPage::heading(const QString& text)
{
    line(styled(printable(text), Style::Heading));
}

void TextPage::paragraph(const QString& text, int indent)
{
    wrapped(QString(indent, QLatin1Char(' ')), text, indent);
}

void TextPage::labelled(const QString& label, const QString& text, int indent, int label_width)
{
    const QString blanks(indent, QLatin1Char(' '));
    wrapped(blanks + label.leftJustified(label_width), text, indent + label_width);
}

void TextPage::wrapped(const QString& first, const QString& text, int indent)
{
    const QString blanks(indent, QLatin1Char(' '));
    QString current = first;
    bool empty = true;
    for (const QString& word : printable(text).split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        if (!empty && current.size() + 1 + word.size() > width) {
            line(current);
            current = blanks;
            empty = true;
        }
        current += (empty ? QString() : QStringLiteral(" ")) + word;
        empty = false;
    }
    line(current);
}

} // namespace inspect
