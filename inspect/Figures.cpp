#include "inspect/Figures.h"

#include <cmath>

namespace inspect
{

QString address_text(quint64 address)
{
    return QStringLiteral("0x") +
           QString::number(address, 16).toUpper().rightJustified(8, QLatin1Char('0'));
}

QString size_text(quint64 bytes)
{
    static constexpr const char* units[] = {"KiB", "MiB", "GiB"};
    QString text = count_text(bytes, "byte");
    quint64 unit = 1024;
    for (const char* name : units) {
        if (bytes < unit || bytes * 10 % unit != 0) {
            break;
        }
        text = QStringLiteral("%1 %2")
                   .arg(static_cast<double>(bytes) / static_cast<double>(unit))
                   .arg(QLatin1String(name));
        unit *= 1024;
    }
    return text;
}

QString count_text(quint64 count, const char* unit)
{
    return QStringLiteral("%1 %2%3").arg(count).arg(QLatin1String(unit),
                                                    QLatin1String(count == 1 ? "" : "s"));
}

QString duration_text(double seconds)
{
    if (seconds < 60) {
        return QStringLiteral("%1 s").arg(seconds, 0, 'f', seconds < 10 ? 2 : 1);
    }
    const auto whole = std::llround(seconds);
    return QStringLiteral("%1 min %2 s").arg(whole / 60).arg(whole % 60);
}

QString printable(const QString& text)
{
    QString shown = text;
    for (QChar& c : shown) {
        c = c.isPrint() || c.isSurrogate() ? c : QLatin1Char('?');
    }
    return shown;
}

} // namespace inspect
