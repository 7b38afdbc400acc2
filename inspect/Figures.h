#pragma once

#include <QString>

namespace inspect
{

/// "0x00000800". Ends of ranges may be one past the last 32-bit address.
QString address_text(quint64 address);

/// "512 bytes", "30 KiB", "1.5 MiB": exact, in the largest unit that needs at most one decimal.
QString size_text(quint64 bytes);

/// "1 page", "30 pages": `unit` in the singular, which takes an s.
QString count_text(quint64 count, const char* unit);

/// "0.4 s", "3 min 20 s".
QString duration_text(double seconds);

/// As it can be shown on a terminal: characters that are not printable become "?".
QString printable(const QString& text);

} // namespace inspect
