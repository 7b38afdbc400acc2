#pragma once

#include <QByteArray>

namespace gang
{

/// What a process prints, as it comes. Progress that other progress overwrites at once is left out,
/// so an upload of any length takes little memory.
class ConsoleText
{
public:
    void add(const QByteArray& bytes);

    const QByteArray& text() const { return m_text; }

    /// The percentage with which the text ends, at most 100; -1 if it does not end with one.
    int percentage() const;

private:
    QByteArray m_text;
};

} // namespace gang
