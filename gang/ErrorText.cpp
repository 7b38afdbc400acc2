#include "gang/ErrorText.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>

namespace gang
{

namespace
{

/// Splits output into lines and removes progress, which has no line end: the error that follows it
/// is on the same line.
QStringList lines_of(const QByteArray& text)
{
    static const QRegularExpression progress(QStringLiteral("\\rProgress \\d+%"));
    QString plain = QString::fromLocal8Bit(text);
    plain.replace(progress, QStringLiteral("\n"));
    plain.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return plain.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

/// Returns the message with each reason once, however many attempts failed for it.
QString giving_up(const QStringList& lines, int first)
{
    QStringList reasons = lines.mid(first);
    reasons.removeAll(QStringLiteral(")"));
    reasons.removeDuplicates();
    QString text = reasons.join(QStringLiteral("; "));
    const QString end = QStringLiteral("; ") +
                        text.section(QLatin1Char('('), 1).section(QStringLiteral("; "), 0, 0);
    if (text.endsWith(end)) {
        text.chop(end.size());
    }
    return text + QLatin1Char(')');
}

int last_index_of(const QStringList& lines, const QString& start)
{
    for (int i = lines.size() - 1; i >= 0; --i) {
        if (lines.at(i).startsWith(start)) {
            return i;
        }
    }
    return -1;
}

} // namespace

QString deciding_error(const QByteArray& console)
{
    const QStringList lines = lines_of(console);
    if (lines.isEmpty()) {
        return {};
    }
    const int port = last_index_of(lines, QStringLiteral("cannot open port "));
    if (port >= 0 && port >= lines.size() - 2) {
        return lines.at(port);
    }
    const int mismatch = last_index_of(lines, QStringLiteral("data mismatch starting at address"));
    if (mismatch >= 0 && mismatch == lines.size() - 3) {
        return lines.at(mismatch);
    }
    const int attempts = last_index_of(lines, QStringLiteral("giving up after having made"));
    if (attempts >= 0 && lines.last() == QLatin1String(")")) {
        return giving_up(lines, attempts);
    }
    return lines.last();
}

QString last_lines(const QByteArray& text, int count)
{
    const QStringList lines = lines_of(text);
    return lines.mid(std::max(0, lines.size() - count)).join(QStringLiteral(" / "));
}

} // namespace gang
