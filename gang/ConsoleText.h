#pragma once

#include <QByteArray>

namespace gang
{

/// Collects the output of a process. A progress line that is directly followed by another one is
/// dropped, so an upload of any length takes little memory.
class ConsoleText
{
public:
    void add(const QByteArray& bytes);

    const QByteArray& text() const { return m_text; }

    /// Returns the percentage of the progress line at the end, at most 100; -1 if the text does not
    /// end with one.
    int percentage() const;

private:
    QByteArray m_text;
};

} // namespace gang
