#include "gang/Inputs.h"

#include "gang/ArgumentError.h"
#include "gang/Fit.h"
#include "gang/ImageNumber.h"
#include "gang/RunRecord.h"
#include "gang/SharedFile.h"
#include "memory/MemoryMap.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace gang
{

namespace
{

QString sha256_of(const QByteArray& bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}

bool write_file(const QString& path, const QByteArray& contents)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size() &&
           file.flush();
}

} // namespace

Inputs::Inputs(const Arguments& arguments, const std::vector<ToolCommand>& commands)
    : m_slot(arguments.number_slot)
{
    if (!m_scratch.isValid()) {
        throw ArgumentError(
            QStringLiteral("cannot make a scratch folder: %1").arg(m_scratch.errorString()));
    }
    take_table(arguments);
    take_images(commands);
    for (const ToolCommand& command : commands) {
        for (const QString& problem : command.doubts()) {
            doubt(problem);
        }
    }
    inspect_fit(arguments, commands);
}

void Inputs::doubt(const QString& problem)
{
    if (!m_problems.contains(problem)) {
        m_problems << problem;
    }
}

void Inputs::take_table(const Arguments& arguments)
{
    QFile file(arguments.table);
    if (!file.open(QIODevice::ReadOnly)) {
        doubt(QStringLiteral("%1: %2").arg(arguments.table, file.errorString()));
        return;
    }
    const QByteArray whole = file.readAll();
    m_table_sha256 = sha256_of(whole);
    m_table = arguments.expected_version ? rows_of(whole, *arguments.expected_version) : whole;
    m_rows.emplace(*m_table);
    for (const QString& problem : m_rows->problems()) {
        doubt(QStringLiteral("%1: %2").arg(arguments.table, problem));
    }
    if (arguments.expected_version && m_rows->find(*arguments.expected_version) == nullptr) {
        throw ArgumentError(QStringLiteral("%1 has no device with version %2")
                                .arg(arguments.table, version_text(*arguments.expected_version)));
    }
}

void Inputs::take_images(const std::vector<ToolCommand>& commands)
{
    for (const ToolCommand& command : commands) {
        for (const QString& image : command.images()) {
            if (!m_images.contains(image)) {
                take_image(image);
            }
        }
    }
}

/// A missing or empty file would be an empty image to the tool, written with success.
void Inputs::take_image(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        throw ArgumentError(QStringLiteral("%1: %2").arg(path, file.errorString()));
    }
    const QByteArray contents = file.readAll();
    const QString copy = m_scratch.filePath(
        QStringLiteral("image-%1-%2")
            .arg(QString::number(m_images.size() + 1), QFileInfo(path).fileName()));
    if (file.error() != QFileDevice::NoError || !write_file(copy, contents)) {
        throw ArgumentError(QStringLiteral("%1: cannot be copied to %2").arg(path, copy));
    }
    m_images.insert(path, {copy, sha256_of(contents)});
    inspect_image(path, copy);
}

void Inputs::inspect_image(const QString& path, const QString& copy)
{
    MemoryMap map(MemoryMap::default_chunk_size);
    const bool is_hex = map.load_from_hex_file(copy, {});
    if (is_hex && map.size() == 0) {
        throw ArgumentError(QStringLiteral("%1: holds no data").arg(path));
    }
    if (m_slot) {
        const QString problem = slot_problem(copy, *m_slot);
        if (!problem.isEmpty()) {
            throw ArgumentError(QStringLiteral("%1: %2").arg(path, problem));
        }
    } else if (!is_hex) {
        doubt(QStringLiteral("%1: cannot be read as an Intel HEX file").arg(path));
    }
}

/// Looks ahead at what is certain about the device that will be there.
void Inputs::inspect_fit(const Arguments& arguments, const std::vector<ToolCommand>& commands)
{
    for (const ToolCommand& command : commands) {
        const unsigned int given = command.settings().bootloader_version;
        std::optional<unsigned short> version = arguments.expected_version;
        if (!version && given != 0) {
            version = static_cast<unsigned short>(given);
        } else if (!version && m_rows) {
            version = m_rows->only_version();
        }
        const QString problem = version ? misfit(*version, command) : QString();
        if (!problem.isEmpty()) {
            doubt(QStringLiteral("%1: %2").arg(command.written_image(), problem));
        }
    }
}

QString Inputs::misfit(unsigned short version, const ToolCommand& command) const
{
    const QString image = command.written_image();
    const Profile* device = m_rows ? m_rows->find(version) : nullptr;
    if (device == nullptr || image.isEmpty()) {
        return {};
    }
    return gang::misfit(*device, m_images.value(image).copy, command.settings(), m_slot);
}

QString Inputs::folder_of(const PortNames& port) const
{
    return m_scratch.filePath(QStringLiteral("port-%1").arg(port.n));
}

QHash<QString, QString> Inputs::furnish(const QString& folder, const ToolCommand& command,
                                        const std::optional<quint64>& number) const
{
    if (!QDir().mkpath(folder) ||
        (m_table && !write_file(folder + QStringLiteral("/device.txt"), *m_table))) {
        throw FileError(QStringLiteral("%1: cannot be furnished").arg(folder));
    }
    QHash<QString, QString> copies;
    for (const QString& image : command.images()) {
        const QString& shared = m_images.value(image).copy;
        copies.insert(image, shared);
        if (!number || !m_slot) {
            continue;
        }
        const QString own = folder + QLatin1Char('/') + QFileInfo(shared).fileName();
        const auto bytes = bytes_of(*number, *m_slot);
        if (!bytes || !copy_with_number(shared, own, *m_slot, *bytes,
                                        m_rows ? m_rows->boundaries() : QSet<unsigned int>())) {
            throw FileError(QStringLiteral("%1: cannot be written").arg(own));
        }
        copies.insert(image, own);
    }
    return copies;
}

} // namespace gang
