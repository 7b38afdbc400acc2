#include "profile/ProfileTable.h"

#include "profile/Profile.h"

#include <QByteArray>
#include <QIODevice>

#include <algorithm>

namespace
{

/// People align columns with several tabs, so a run of tabs separates two fields.
QString with_single_tabs(QString line)
{
    const QChar tab = QLatin1Char('\t');
    const auto end = std::unique(line.begin(), line.end(),
                                 [tab](QChar a, QChar b) { return a == tab && b == tab; });
    line.truncate(static_cast<int>(end - line.begin()));
    return line;
}

QStringList split_fields(const QString& line)
{
    QStringList fields = with_single_tabs(line).split(QLatin1Char('\t'));
    if (fields.last().isEmpty()) {
        fields.removeLast();
    }
    return fields;
}

/// The profile checks whether the four characters in between are digits when it converts the field.
bool is_version_field(const QString& field)
{
    return field.size() == 6 && field.startsWith(QLatin1Char('v')) &&
           field.endsWith(QLatin1Char(':'));
}

QByteArray without_line_end(QByteArray line)
{
    if (line.endsWith('\n')) {
        line.chop(line.endsWith("\r\n") ? 2 : 1);
    }
    return line;
}

} // namespace

ProfileTableLine parse_profile_table_line(QString line)
{
    QStringList fields = split_fields(line);
    if (fields.size() != Profile::_enum_size) {
        return {ProfileTableLine::Kind::Remark, fields};
    }
    if (fields.first() == QLatin1String("Version")) {
        return {ProfileTableLine::Kind::Header, fields};
    }
    if (!is_version_field(fields.first())) {
        return {ProfileTableLine::Kind::Unparsable, fields};
    }
    fields.first() = QStringLiteral("0x") + fields.first().mid(1, 4);
    return {ProfileTableLine::Kind::Row, fields};
}

std::optional<ProfileTableLine> read_profile_table_line(QIODevice& device)
{
    const QByteArray line = device.readLine();
    if (line.isEmpty()) {
        return std::nullopt;
    }
    const QByteArray text = without_line_end(line);
    // With its length given, a NUL is one more character that fits nowhere, not the line's end.
    return parse_profile_table_line(QString::fromUtf8(text.constData(), text.size()));
}
