#include "sim/program/StateFile.h"

#include "sim/device/DeviceMemory.h"
#include "sim/device/Error.h"
#include "sim/rig/WholeFile.h"
#include "util/Util.h"

#include <QFile>
#include <QFileInfo>

#include <utility>

namespace sim
{

namespace
{

constexpr int bytes_per_line = 16;
const char* const end_line = "end";

QByteArray title(unsigned int version)
{
    return "zserial-sim state of device " + Util::uint_to_hex(version, 4).toLatin1();
}

QByteArray line_of(unsigned int address, const QByteArray& bytes)
{
    return Util::uint_to_hex(address, -1).toLatin1() + ' ' + bytes.toHex().toUpper();
}

QList<QByteArray> lines_of(const DeviceMemory& memory, unsigned int version)
{
    QList<QByteArray> lines = {title(version)};
    for (const DeviceMemory::ProgrammedRange& range : memory.programmed_ranges()) {
        for (int done = 0; done < range.bytes.size(); done += bytes_per_line) {
            lines.append(line_of(range.address + static_cast<unsigned int>(done),
                                 range.bytes.mid(done, bytes_per_line)));
        }
    }
    lines.append(end_line);
    return lines;
}

/// Accepts only exactly what this program writes.
bool read_line(const QByteArray& line, DeviceMemory& memory)
{
    bool converted = false;
    const unsigned int address = line.left(8).toUInt(&converted, 16);
    const QByteArray bytes = QByteArray::fromHex(line.mid(9));
    return converted && !bytes.isEmpty() && line == line_of(address, bytes) &&
           memory.preset(address, bytes) == 0;
}

} // namespace

void StateFile::load(DeviceMemory& memory) const
{
    QFile file(m_path);
    if (!file.exists()) {
        return;
    }
    if (!QFileInfo(m_path).isFile()) {
        throw Error(QStringLiteral("the state %1 is not a regular file").arg(m_path));
    }
    if (!file.open(QIODevice::ReadOnly)) {
        throw Error(QStringLiteral("cannot read the state %1: %2").arg(m_path, file.errorString()));
    }
    QList<QByteArray> lines = file.readAll().split('\n');
    const bool whole = lines.size() >= 3 && lines.takeLast().isEmpty() &&
                       lines.takeLast() == end_line && lines.takeFirst() == title(m_version);
    bool good = whole;
    for (const QByteArray& line : std::as_const(lines)) {
        good = good && read_line(line, memory);
    }
    if (!good) {
        throw Error(QStringLiteral("the state %1 is damaged, or of another device than %2")
                        .arg(m_path, Util::uint_to_hex(m_version, 4)));
    }
}

void StateFile::save(const DeviceMemory& memory) const
{
    const QByteArray text = lines_of(memory, m_version).join('\n') + '\n';
    if (!write_whole_file(m_path, text)) {
        throw Error(QStringLiteral("cannot write the state %1").arg(m_path));
    }
}

} // namespace sim
