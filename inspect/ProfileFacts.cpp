#include "inspect/ProfileFacts.h"

#include "inspect/Figures.h"
#include "inspect/Frames.h"
#include "inspect/Meanings.h"
#include "inspect/OperationCosts.h"
#include "inspect/RowLint.h"

#include <QJsonArray>

namespace inspect
{

namespace
{

/// JSON knows one kind of number, which holds whole ones up to 2 to the 53rd.
QJsonValue number(quint64 value)
{
    return {static_cast<double>(value)};
}

QJsonObject range_json(quint64 start, quint64 end)
{
    return {{QStringLiteral("start"), number(start)}, {QStringLiteral("end"), number(end)}};
}

QJsonValue memory_json(const Profile& profile, MemoryType memory)
{
    if (!profile.has_memory_type(memory)) {
        return {};
    }
    QJsonObject object =
        range_json(profile.get_min_address(memory), profile.get_max_address(memory));
    object.insert(QStringLiteral("word_size"), number(profile.get_word_size(memory)));
    object.insert(QStringLiteral("divisor"), number(profile.get_address_divisor(memory)));
    object.insert(QStringLiteral("row_size"), number(profile.get_row_size(memory)));
    object.insert(QStringLiteral("block_size"), number(profile.get_block_size(memory)));
    if (memory == MEMORY_FLASH) {
        object.insert(QStringLiteral("page_size"), number(profile.get_page_size(memory)));
    }
    return object;
}

QJsonObject cost_json(const Cost& cost, unsigned int rate)
{
    return {{QStringLiteral("commands"), number(cost.commands)},
            {QStringLiteral("bytes"), number(cost.bytes)},
            {QStringLiteral("seconds"), seconds_of(cost.bytes, rate)}};
}

QJsonValue costs_json(const Profile& profile)
{
    const auto costs = costs_of(profile);
    if (!costs) {
        return {};
    }
    const unsigned int rate = profile.attributes[Profile::max_baud];
    return QJsonObject{{QStringLiteral("erase"), cost_json(costs->erase, rate)},
                       {QStringLiteral("write"), cost_json(costs->write, rate)},
                       {QStringLiteral("read"), cost_json(costs->read, rate)}};
}

QJsonArray columns_json(const TableRow& row)
{
    QJsonArray columns;
    for (int i = 0; i < Profile::_enum_size; ++i) {
        const auto attribute = static_cast<Profile::Attr>(i);
        columns.append(QJsonObject{
            {QStringLiteral("column"), i + 1},
            {QStringLiteral("attribute"), QString::fromLatin1(meta_attr.valueToKey(i))},
            {QStringLiteral("text"), row.text(attribute)},
            {QStringLiteral("value"),
             attribute == Profile::device_name
                 ? QJsonValue()
                 : number(row.profile->attributes.at(static_cast<std::size_t>(i)))},
            {QStringLiteral("meaning"), meaning_of(row, attribute)},
        });
    }
    return columns;
}

void print_flash(TextPage& page, const Profile& profile)
{
    const quint64 start = profile.get_min_address(MEMORY_FLASH);
    const quint64 end = profile.get_max_address(MEMORY_FLASH);
    if (!profile.has_memory_type(MEMORY_FLASH) || start >= end) {
        page.labelled(QStringLiteral("flash"), QStringLiteral("none"));
        return;
    }
    page.labelled(QStringLiteral("flash"),
                  QStringLiteral("%1 to %2, %3 in words of %4")
                      .arg(address_text(start), address_text(end), size_text(end - start),
                           size_text(profile.get_word_size(MEMORY_FLASH))));
    const quint64 row = profile.get_row_size(MEMORY_FLASH);
    const quint64 pages = profile.get_page_size(MEMORY_FLASH);
    if (row != 0 && pages != 0) {
        page.labelled(QString(),
                      QStringLiteral("%1 of %2, %3 of %4, blocks of %5")
                          .arg(count_text((end - start + pages - 1) / pages, "page"),
                               size_text(pages), count_text((end - start + row - 1) / row, "row"),
                               size_text(row), size_text(profile.get_block_size(MEMORY_FLASH))));
    }
}

void print_eeprom(TextPage& page, const Profile& profile)
{
    const quint64 start = profile.get_min_address(MEMORY_EEPROM);
    const quint64 end = profile.get_max_address(MEMORY_EEPROM);
    const quint64 row = profile.get_row_size(MEMORY_EEPROM);
    if (!profile.has_memory_type(MEMORY_EEPROM) || start >= end) {
        page.labelled(QStringLiteral("EEPROM"), QStringLiteral("none"));
        return;
    }
    page.labelled(QStringLiteral("EEPROM"),
                  QStringLiteral("%1 to %2, %3 in words of %4")
                      .arg(address_text(start), address_text(end), size_text(end - start),
                           size_text(profile.get_word_size(MEMORY_EEPROM))));
    if (row != 0) {
        page.labelled(QString(),
                      QStringLiteral("%1 of %2, blocks of %3")
                          .arg(count_text((end - start + row - 1) / row, "row"), size_text(row),
                               size_text(profile.get_block_size(MEMORY_EEPROM))));
    }
}

void print_range(TextPage& page, const char* label, quint64 start, quint64 end)
{
    page.labelled(QLatin1String(label),
                  start < end
                      ? QStringLiteral("%1 to %2, %3")
                            .arg(address_text(start), address_text(end), size_text(end - start))
                      : QStringLiteral("none"));
}

void print_cost(TextPage& page, const char* label, const Cost& cost, unsigned int rate)
{
    page.labelled(QLatin1String(label), QStringLiteral("%1, %2 on the line")
                                            .arg(count_text(cost.commands, "command"),
                                                 duration_text(seconds_of(cost.bytes, rate))));
}

} // namespace

QJsonObject json_of(const TableRow& row, bool explained)
{
    const Profile& profile = *row.profile;
    QJsonObject object = {
        {QStringLiteral("version"), row.version().toUpper()},
        {QStringLiteral("name"), profile.name},
        {QStringLiteral("line"), row.line},
        {QStringLiteral("counts"), row.counts},
        {QStringLiteral("baud"), number(profile.attributes[Profile::max_baud])},
        {QStringLiteral("flash"), memory_json(profile, MEMORY_FLASH)},
        {QStringLiteral("eeprom"), memory_json(profile, MEMORY_EEPROM)},
        {QStringLiteral("bootloader"),
         range_json(profile.attributes[Profile::bootloader_start_address],
                    profile.attributes[Profile::bootloader_end_address])},
        {QStringLiteral("unencrypted"),
         range_json(profile.attributes[Profile::flash_unencrypted_start_address],
                    profile.attributes[Profile::flash_unencrypted_end_address])},
        {QStringLiteral("costs"), costs_json(profile)},
    };
    if (explained) {
        object.insert(QStringLiteral("columns"), columns_json(row));
    }
    return object;
}

void print(TextPage& page, const TableRow& row)
{
    const Profile& profile = *row.profile;
    const unsigned int rate = profile.attributes[Profile::max_baud];
    page.line();
    page.heading(QStringLiteral("%1 %2 (line %3%4)")
                     .arg(row.version().toUpper(), profile.name)
                     .arg(row.line)
                     .arg(QLatin1String(row.counts ? "" : ", replaced by a later row")));
    page.labelled(QStringLiteral("rate"), QStringLiteral("%1 baud").arg(rate));
    print_range(page, "bootloader", profile.attributes[Profile::bootloader_start_address],
                profile.attributes[Profile::bootloader_end_address]);
    print_flash(page, profile);
    print_range(page, "unencrypted", profile.attributes[Profile::flash_unencrypted_start_address],
                profile.attributes[Profile::flash_unencrypted_end_address]);
    print_eeprom(page, profile);
    if (const auto costs = costs_of(profile)) {
        print_cost(page, "full erase", costs->erase, rate);
        print_cost(page, "full write", costs->write, rate);
        print_cost(page, "full read", costs->read, rate);
    }
}

void explain(TextPage& page, const TableRow& row)
{
    constexpr int text_width = 14;
    page.line();
    page.line(page.styled(QStringLiteral("  #  %1%2meaning")
                              .arg(QStringLiteral("text").leftJustified(text_width),
                                   QStringLiteral("value").leftJustified(12)),
                          Style::Heading));
    for (int i = 0; i < Profile::_enum_size; ++i) {
        const auto attribute = static_cast<Profile::Attr>(i);
        const bool is_text = attribute == Profile::device_name;
        const QString label =
            QString::number(i + 1).rightJustified(3) + QStringLiteral("  ") +
            printable(row.text(attribute)).leftJustified(text_width - 1) + QLatin1Char(' ') +
            (is_text ? QString()
                     : QString::number(row.profile->attributes.at(static_cast<std::size_t>(i))))
                .leftJustified(11) +
            QLatin1Char(' ');
        page.labelled(label, meaning_of(row, attribute), 0, 5 + text_width + 12);
    }
}

} // namespace inspect
