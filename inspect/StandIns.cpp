#include "inspect/StandIns.h"

#include "inspect/FileOutlook.h"
#include "inspect/UsageError.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <sys/mman.h>

namespace inspect
{

namespace
{

constexpr qint64 block_size = 1024 * 1024;

} // namespace

QString StandIns::StandIn::name() const
{
    return QStringLiteral("/proc/self/fd/%1").arg(descriptor.get());
}

QString StandIns::copy_of(const QString& name)
{
    if (name.isEmpty()) {
        return {};
    }
    if (const StandIn* found = find(name)) {
        return found->name();
    }
    const StandIn& added = add(name);
    fill(added);
    return added.name();
}

QString StandIns::empty_for(const QString& name)
{
    if (name.isEmpty()) {
        return {};
    }
    const StandIn* found = find(name);
    return found != nullptr ? found->name() : add(name).name();
}

const StandIns::StandIn* StandIns::find(const QString& name) const
{
    const auto found =
        std::find_if(m_stand_ins.begin(), m_stand_ins.end(), [&name](const StandIn& stand_in) {
            return stand_in.file == name || are_one_file(stand_in.file, name);
        });
    return found == m_stand_ins.end() ? nullptr : &*found;
}

const StandIns::StandIn& StandIns::add(const QString& name)
{
    m_stand_ins.push_back({name, sim::Descriptor(::memfd_create("stand-in", MFD_CLOEXEC))});
    if (!m_stand_ins.back().descriptor.is_open()) {
        throw UsageError(QStringLiteral("cannot create a file in memory"));
    }
    return m_stand_ins.back();
}

/// What is no regular file, such as a terminal, or cannot be read, is only written to.
void StandIns::fill(const StandIn& stand_in)
{
    if (!QFileInfo(stand_in.file).isFile() || !QFileInfo(stand_in.file).isReadable()) {
        return;
    }
    QFile copy(stand_in.name());
    QFile file(stand_in.file);
    bool is_whole = copy.open(QIODevice::WriteOnly) && file.open(QIODevice::ReadOnly);
    while (is_whole && !file.atEnd()) {
        const QByteArray block = file.read(block_size);
        is_whole = !block.isEmpty() && copy.write(block) == block.size();
    }
    if (!is_whole || !copy.flush()) {
        throw UsageError(QStringLiteral("cannot copy %1 into memory").arg(stand_in.file));
    }
}

QString StandIns::with_files(QString text) const
{
    for (const StandIn& stand_in : m_stand_ins) {
        text.replace(stand_in.name(), stand_in.file);
    }
    return text;
}

} // namespace inspect
