#include "gang/DeviceTable.h"

#include "gang/CopiedFile.h"
#include "gang/Problems.h"
#include "inspect/RowLint.h"

#include <algorithm>

namespace gang
{

namespace
{

unsigned short version_of(const inspect::TableRow& row)
{
    return row.fields.first().toUShort(nullptr, 16);
}

/// True if zserial rejects the whole table because of this problem.
bool is_fatal(inspect::Code code)
{
    return code == inspect::Code::RowVersion || code == inspect::Code::FieldIsNoNumber ||
           code == inspect::Code::WordsPerAddressZero;
}

} // namespace

unsigned short version_of(const Profile& device)
{
    return static_cast<unsigned short>(device.attributes[Profile::bootloader_version]);
}

DeviceTable::DeviceTable(const QString& path, const QString& copy) : m_path(path)
{
    try {
        const CopiedFile file(path, copy);
        m_contents = file.contents();
        m_sha256 = file.sha256();
    } catch (const FileError& error) {
        m_reason = QString::fromStdString(error.what());
        return;
    }
    m_table = inspect::read_table(copy);
}

QByteArray DeviceTable::rows_of(unsigned short version) const
{
    const QList<QByteArray> lines = m_contents.split('\n');
    QByteArray rows;
    for (const inspect::TableRow& row : m_table.rows) {
        if (version_of(row) == version) {
            rows += lines.at(static_cast<int>(row.line) - 1) + '\n';
        }
    }
    return rows;
}

const Profile* DeviceTable::find(unsigned short version) const
{
    const inspect::TableRow* row = m_table.find(version);
    return row == nullptr ? nullptr : row->profile.get();
}

std::vector<const Profile*> DeviceTable::devices() const
{
    std::vector<const Profile*> devices;
    for (const inspect::TableRow& row : m_table.rows) {
        if (row.counts && row.profile) {
            devices.push_back(row.profile.get());
        }
    }
    return devices;
}

QSet<unsigned int> DeviceTable::boundaries() const
{
    QSet<unsigned int> boundaries;
    for (const Profile* device : devices()) {
        boundaries += device->boundaries;
    }
    return boundaries;
}

bool DeviceTable::concerns(const inspect::Problem& problem, const QSet<unsigned short>& versions,
                           bool alone) const
{
    if (problem.place.line == 0 || (!alone && (versions.isEmpty() || is_fatal(problem.code)))) {
        return true;
    }
    return std::any_of(m_table.rows.begin(), m_table.rows.end(), [&](const auto& row) {
        return row.line == problem.place.line && versions.contains(version_of(row));
    });
}

QStringList DeviceTable::problems(const QSet<unsigned short>& versions, bool alone) const
{
    if (!is_readable()) {
        return {m_reason};
    }
    QStringList lines;
    for (const inspect::Problem& problem : inspect::lint_table(m_table)) {
        if (prevents_start(problem) && concerns(problem, versions, alone)) {
            lines << line_of(problem, m_path);
        }
    }
    return lines;
}

} // namespace gang
