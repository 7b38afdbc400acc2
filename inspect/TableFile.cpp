#include "inspect/TableFile.h"

#include "inspect/Figures.h"
#include "inspect/InputFile.h"
#include "inspect/SilentLibrary.h"
#include "profile/ProfileTable.h"
#include "util/Util.h"

#include <QException>
#include <QRegularExpression>

#include <algorithm>
#include <map>

namespace inspect
{

namespace
{

/// Far above any table. A line of a file that is none may be as long as the file.
constexpr qint64 largest_table = 16 * 1024 * 1024;

/// A row with so many columns too few was hardly meant as anything else.
constexpr int columns_of_a_row_at_least = 20;

std::unique_ptr<Profile> profile_of(const QStringList& fields)
{
    try {
        return std::make_unique<Profile>(fields);
    } catch (const QException&) {
        return nullptr;
    }
}

/// Fields that convert and ask for no scaling.
QStringList harmless_fields()
{
    QStringList fields;
    for (int i = 0; i < Profile::_enum_size; ++i) {
        const bool divides =
            i == Profile::flash_words_per_address || i == Profile::eeprom_words_per_address;
        fields << QString::number(divides ? 1 : 0);
    }
    return fields;
}

bool converts(int attribute, const QString& field)
{
    QStringList fields = harmless_fields();
    fields[attribute] = field;
    return profile_of(fields) != nullptr;
}

QStringList without_scaling(QStringList fields)
{
    fields[Profile::flash_word_size] = QStringLiteral("0");
    fields[Profile::eeprom_word_size] = QStringLiteral("0");
    return fields;
}

QString attribute_name(int attribute)
{
    return QString::fromLatin1(meta_attr.valueToKey(attribute));
}

class TableReader
{
public:
    explicit TableReader(const QString& path) { m_table.path = path; }

    TableFile read();

private:
    void take(const ProfileTableLine& line);
    void take_row(const QStringList& fields);
    void skip(const ProfileTableLine& line);
    void check_fields(const QStringList& fields, bool usable);
    void check_words_per_address(const QStringList& fields);
    void settle_duplicates();
    void add(Code code, const QString& message, int column = 0);

    TableFile m_table;
    qint64 m_line = 0;
};

TableFile TableReader::read()
{
    InputFile input(m_table.path);
    QString reason = input.reason();
    if (input.is_open() && input.file().size() > largest_table) {
        reason = QStringLiteral("it has more than %1").arg(size_text(largest_table));
    }
    if (!reason.isEmpty()) {
        add(Code::TableUnreadable, reason);
        return std::move(m_table);
    }
    const SilentLibrary silent;
    while (const auto line = read_profile_table_line(input.file())) {
        ++m_line;
        take(*line);
    }
    m_line = 0;
    m_table.is_readable = input.file().error() == QFile::NoError;
    if (!m_table.is_readable) {
        add(Code::TableUnreadable, input.file().errorString());
    } else if (m_table.rows.empty()) {
        add(Code::NoDevice, QStringLiteral("None of %1 describes a device.")
                                .arg(count_text(m_table.skipped.size(), "line")));
    }
    settle_duplicates();
    return std::move(m_table);
}

void TableReader::take(const ProfileTableLine& line)
{
    switch (line.kind) {
    case ProfileTableLine::Kind::Header:
        m_table.skipped.push_back({m_line, line.fields.size(), SkippedLine::Kind::Title});
        break;
    case ProfileTableLine::Kind::Remark:
        skip(line);
        break;
    case ProfileTableLine::Kind::Unparsable:
        add(Code::RowVersion,
            QStringLiteral("The first column is \"%1\".").arg(line.fields.first()), 1);
        break;
    case ProfileTableLine::Kind::Row:
        take_row(line.fields);
        break;
    }
}

void TableReader::take_row(const QStringList& fields)
{
    TableRow row{m_line, fields, profile_of(fields), profile_of(without_scaling(fields))};
    check_fields(fields, row.profile != nullptr);
    m_table.rows.push_back(std::move(row));
}

void TableReader::skip(const ProfileTableLine& line)
{
    static const QRegularExpression version(QStringLiteral("^[vV][0-9A-Fa-f]{3,5}:?$"));
    static const QRegularExpression blanks(QStringLiteral("\\s+"));
    const QStringList words = line.fields.join(QLatin1Char(' ')).split(blanks, Qt::SkipEmptyParts);
    const int columns = line.fields.size();
    const bool has_version = !words.isEmpty() && version.match(words.first()).hasMatch();
    const bool many_columns =
        columns >= columns_of_a_row_at_least && line.fields.first() != QLatin1String("Version");
    const bool many_words = words.size() >= columns_of_a_row_at_least;
    auto kind = SkippedLine::Kind::Remark;
    if (words.isEmpty()) {
        kind = SkippedLine::Kind::Blank;
    } else if (many_columns || (has_version && (columns > 1 || many_words))) {
        kind = SkippedLine::Kind::BrokenRow;
    }
    m_table.skipped.push_back({m_line, columns, kind});
    if (kind != SkippedLine::Kind::BrokenRow) {
        return;
    }
    const bool by_blanks = columns < Profile::_enum_size && words.size() >= Profile::_enum_size;
    add(by_blanks ? Code::RowWithBlanks : Code::RowColumns,
        QStringLiteral("The row that begins with \"%1\" has %2 instead of 25.")
            .arg(words.first(), count_text(static_cast<quint64>(columns), "column")));
}

void TableReader::check_fields(const QStringList& fields, bool usable)
{
    if (usable) {
        return;
    }
    bool all_convert = true;
    for (int i = 0; i < Profile::_enum_size; ++i) {
        if (!converts(i, fields.at(i))) {
            all_convert = false;
            add(Code::FieldIsNoNumber,
                QStringLiteral("%1 is \"%2\".").arg(attribute_name(i), fields.at(i)), i + 1);
        }
    }
    if (all_convert) {
        check_words_per_address(fields);
    }
}

void TableReader::check_words_per_address(const QStringList& fields)
{
    for (const Profile::Attr attribute :
         {Profile::flash_words_per_address, Profile::eeprom_words_per_address}) {
        QStringList alone = harmless_fields();
        alone[attribute - 1] = fields.at(attribute - 1); // the word size stands before it
        alone[attribute] = fields.at(attribute);
        if (profile_of(alone) == nullptr) {
            add(Code::WordsPerAddressZero,
                QStringLiteral("%1 is 0 and %2 is not.")
                    .arg(attribute_name(attribute), attribute_name(attribute - 1)),
                attribute + 1);
        }
    }
}

void TableReader::settle_duplicates()
{
    std::map<unsigned short, TableRow*> last;
    for (TableRow& row : m_table.rows) {
        if (row.profile == nullptr) {
            continue;
        }
        TableRow*& entry = last[static_cast<unsigned short>(row.profile->attributes[0])];
        if (entry != nullptr) {
            entry->counts = false;
            m_line = row.line;
            add(Code::DuplicateVersion,
                QStringLiteral("The version %1 stands in line %2, too; this row counts.")
                    .arg(row.version())
                    .arg(entry->line),
                1);
        }
        entry = &row;
    }
}

void TableReader::add(Code code, const QString& message, int column)
{
    m_table.problems.push_back({code, message, {m_table.path, m_line, column}, {}, {}});
}

} // namespace

QString TableRow::version() const
{
    return fields.first().mid(2);
}

QString TableRow::text(Profile::Attr attribute) const
{
    return attribute == Profile::bootloader_version
               ? QStringLiteral("v%1:").arg(version()) // which the form of a row demands
               : fields.at(attribute);
}

unsigned int TableRow::raw(Profile::Attr attribute) const
{
    const bool is_word_size =
        attribute == Profile::flash_word_size || attribute == Profile::eeprom_word_size;
    return (is_word_size ? profile : unscaled)->attributes.at(static_cast<std::size_t>(attribute));
}

QString name_of(SkippedLine::Kind kind)
{
    switch (kind) {
    case SkippedLine::Kind::Blank:
        return QStringLiteral("blank");
    case SkippedLine::Kind::Remark:
        return QStringLiteral("remark");
    case SkippedLine::Kind::Title:
        return QStringLiteral("title");
    case SkippedLine::Kind::BrokenRow:
        return QStringLiteral("broken row");
    }
    return {};
}

const TableRow* TableFile::find(unsigned short version) const
{
    const auto found = std::find_if(rows.begin(), rows.end(), [version](const TableRow& row) {
        return row.counts && row.profile != nullptr &&
               static_cast<unsigned short>(row.profile->attributes[0]) == version;
    });
    return found == rows.end() ? nullptr : &*found;
}

TableFile read_table(const QString& path)
{
    return TableReader(path).read();
}

bool ends_the_run(const Problem& problem)
{
    return problem.code == Code::RowVersion || problem.code == Code::FieldIsNoNumber ||
           problem.code == Code::WordsPerAddressZero;
}

} // namespace inspect
