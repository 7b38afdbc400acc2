#pragma once

#include <QString>

namespace inspect
{

/// What a piece of text stands for; a terminal shows it in colour.
enum class Style { Plain, Heading, Error, Warning, Good, Faint };

/// Text for people in lines of at most 80 characters. Only words that cannot be broken, such as
/// paths, may be longer.
class TextPage
{
public:
    static constexpr int width = 80;

    explicit TextPage(bool colour) : m_colour(colour) {}

    /// `text` as it goes between other text of a line.
    QString styled(const QString& text, Style style) const;

    /// An unchanged line. The caller keeps it short enough.
    void line(const QString& text = QString());
    void heading(const QString& text);
    /// Words on as many lines as they need, all of them indented.
    void paragraph(const QString& text, int indent);
    /// The same with a label before the first line: "  flash        0x800 to ...".
    void labelled(const QString& label, const QString& text, int indent = 2, int label_width = 12);

    const QString& text() const { return m_text; }

private:
    void wrapped(const QString& first, const QString& text, int indent);

    bool m_colour;
    QString m_text;
};

} // namespace inspect
