#include "gang/NumberFile.h"

#include "gang/SerialNumber.h"

namespace gang
{

NumberFile::NumberFile(const QString& path) : m_file(path, SharedFile::Missing::Refuse) {}

void NumberFile::refuse_line(const char* reason) const
{
    throw FileError(QStringLiteral("%1, line %2: %3")
                        .arg(m_file.path(), QString::number(m_line), QLatin1String(reason)));
}

void NumberFile::take_line(const QByteArray& line)
{
    ++m_line;
    const QByteArray text = line.trimmed();
    if (text.isEmpty() || text.startsWith('#')) {
        return;
    }
    const int blank = text.indexOf(' ');
    bool is_number = false;
    const quint64 number = text.split(' ').first().toULongLong(&is_number);
    if (!is_number || number > largest_number) {
        refuse_line("does not begin with a number from 0 to 9007199254740991");
    }
    if (m_has_next && number < m_next) {
        refuse_line("goes back to a number that was given out or skipped");
    }
    if (blank < 0) {
        m_next = number;
    } else {
        m_next = number + 1;
        m_given.push_back({number, QString::fromUtf8(text.mid(blank + 1))});
    }
    m_has_next = true;
}

/// True if these bytes without a line end are the start of the line for the next number, left by a
/// killed gang. Anything else was written by a user and counts.
bool NumberFile::is_torn(const QByteArray& rest) const
{
    const QByteArray start = QByteArray::number(m_next) + ' ';
    return m_has_next && !rest.isEmpty() && start.startsWith(rest.left(start.size()));
}

/// Parses what has been appended to the file since the last call.
void NumberFile::catch_up()
{
    m_file.require_same_file();
    const QByteArray added = m_file.read_from(m_read);
    int start = 0;
    for (int end = 0; (end = added.indexOf('\n', start)) >= 0; start = end + 1) {
        take_line(added.mid(start, end - start));
    }
    if (is_torn(added.mid(start))) {
        m_file.truncate(m_read + start);
    } else if (start < added.size()) {
        m_file.end_line();
        take_line(added.mid(start));
        start = added.size() + 1;
    }
    m_read += start;
    if (!m_has_next) {
        throw FileError(
            QStringLiteral("%1: holds no number; write the first one into it, such as 1000")
                .arg(m_file.path()));
    }
}

quint64 NumberFile::next()
{
    const SharedFile::Lock lock(m_file);
    catch_up();
    return m_next;
}

quint64 NumberFile::draw(const QString& to, const std::function<void(quint64)>& accepts)
{
    const SharedFile::Lock lock(m_file);
    catch_up();
    const quint64 number = m_next;
    accepts(number);
    m_file.append(QByteArray::number(number) + ' ' + to.simplified().toUtf8());
    catch_up(); // counts as given out from now on, even if the file loses the line
    return number;
}

std::vector<GivenNumber> NumberFile::given()
{
    const SharedFile::Lock lock(m_file);
    catch_up();
    return m_given;
}

} // namespace gang
