#include "gang/Inputs.h"

#include "gang/ArgumentError.h"
#include "gang/CopiedFile.h"
#include "gang/Fit.h"
#include "gang/ImageNumber.h"
#include "gang/Problems.h"
#include "gang/RunRecord.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace gang
{

Inputs::Inputs(const Arguments& arguments, const std::vector<ToolCommand>& commands)
    : m_arguments(arguments)
{
    if (!m_scratch.isValid()) {
        throw ArgumentError(
            QStringLiteral("cannot create a temporary folder: %1").arg(m_scratch.errorString()));
    }
    m_table.emplace(arguments.table, m_scratch.filePath(QStringLiteral("table")));
    const QSet<unsigned short> versions = versions_of(commands);
    inspect_table(versions);
    take_images(commands);
    for (const ToolCommand& command : commands) {
        add_problems(command.suspicious_arguments());
        inspect_fit(command, versions);
    }
    if (versions.isEmpty()) {
        inspect_room();
    }
}

void Inputs::add_problems(const QStringList& problems)
{
    for (const QString& problem : problems) {
        if (!m_problems.contains(problem)) {
            m_problems << problem;
        }
    }
}

/// Returns the versions that the devices must have; none if any version may appear.
QSet<unsigned short> Inputs::versions_of(const std::vector<ToolCommand>& commands) const
{
    if (m_arguments.expected_version) {
        return {*m_arguments.expected_version};
    }
    QSet<unsigned short> given;
    for (const ToolCommand& command : commands) {
        given.insert(static_cast<unsigned short>(command.settings().bootloader_version));
    }
    if (!given.contains(0)) {
        return given;
    }
    const std::vector<const Profile*> devices = m_table->devices();
    return devices.size() == 1 ? QSet<unsigned short>{version_of(*devices.front())}
                               : QSet<unsigned short>();
}

void Inputs::inspect_table(const QSet<unsigned short>& versions)
{
    const std::optional<unsigned short>& expected = m_arguments.expected_version;
    add_problems(m_table->problems(versions, expected.has_value()));
    if (expected && m_table->is_readable() && m_table->find(*expected) == nullptr) {
        throw ArgumentError(QStringLiteral("%1 has no usable row for version %2")
                                .arg(m_arguments.table, version_text(*expected)));
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

/// zserial treats a missing or empty file as an empty image and reports success, so both are
/// refused here.
void Inputs::take_image(const QString& path)
{
    const QString copy = m_scratch.filePath(QStringLiteral("image-%1").arg(m_images.size() + 1));
    const CopiedFile file(path, copy);
    m_images.insert(path, {copy, file.sha256()});
    for (const inspect::Problem& problem : inspect::read_image(copy, {}).problems) {
        if (problem.code == inspect::Code::ImageWithoutData) {
            throw ArgumentError(line_of(problem, path));
        }
        if (prevents_start(problem)) {
            add_problems({line_of(problem, path)});
        }
    }
    const auto& slot = m_arguments.number_slot;
    const QString problem = slot ? slot_problem(copy, *slot) : QString();
    if (!problem.isEmpty()) {
        throw ArgumentError(QStringLiteral("%1: %2").arg(path, problem));
    }
}

/// Checks the images against the devices that are known in advance.
void Inputs::inspect_fit(const ToolCommand& command, const QSet<unsigned short>& versions)
{
    for (const QString& image : command.images()) {
        for (const unsigned short version : versions) {
            const Profile* device = m_table->find(version);
            if (device == nullptr) {
                continue;
            }
            const FitProblems& fit = fit_problems_of(*device, image, command.settings());
            for (const QString& problem : fit.problems + QStringList{fit.nothing_written}) {
                if (!problem.isEmpty()) {
                    add_problems({QStringLiteral("%1: %2").arg(image, problem)});
                }
            }
        }
    }
}

/// Checks that each image fits at least one device of the table.
void Inputs::inspect_room()
{
    const std::vector<const Profile*> devices = m_table->devices();
    for (auto image = m_images.begin(); image != m_images.end() && !devices.empty(); ++image) {
        const inspect::ImageFile file = inspect::read_image(image->copy, {});
        if (std::none_of(devices.begin(), devices.end(),
                         [&file](const Profile* device) { return has_room(*device, file); })) {
            add_problems(
                {QStringLiteral("%1: does not fit into any device of the table").arg(image.key())});
        }
    }
}

const Inputs::FitProblems& Inputs::fit_problems_of(const Profile& device, const QString& image,
                                                   const Settings& settings) const
{
    const QString key = QStringLiteral("%1 %2 %3 %4")
                            .arg(version_of(device))
                            .arg(settings.include_encrypted)
                            .arg(settings.include_unencrypted)
                            .arg(image);
    const auto known = m_fit_problems.constFind(key);
    if (known != m_fit_problems.constEnd()) {
        return *known;
    }
    const inspect::ImageFile file =
        inspect::read_image(m_images.value(image).copy, device.boundaries);
    FitProblems fit;
    if (file.loads) {
        fit.nothing_written =
            reason_nothing_is_written(device, file, settings, m_arguments.number_slot);
        fit.problems = fit_problems(device, file);
    }
    return *m_fit_problems.insert(key, fit);
}

/// With --force, an image of which only part fits is accepted.
QString Inputs::fit_problem(unsigned short version, const ToolCommand& command) const
{
    const QString image = command.written_image();
    const Profile* device = m_table->find(version);
    if (device == nullptr || image.isEmpty()) {
        return {};
    }
    const FitProblems& fit = fit_problems_of(*device, image, command.settings());
    const bool forced = m_arguments.force || fit.problems.isEmpty();
    return forced || !fit.nothing_written.isEmpty() ? fit.nothing_written : fit.problems.first();
}

QString Inputs::folder_of(const PortNames& port) const
{
    return m_scratch.filePath(QStringLiteral("port-%1").arg(port.n));
}

QString Inputs::own_copy(const QString& folder, const QString& shared, quint64 number) const
{
    QString own = folder + QLatin1Char('/') + QFileInfo(shared).fileName();
    const auto bytes = bytes_of(number, *m_arguments.number_slot);
    if (!bytes ||
        !copy_with_number(shared, own, *m_arguments.number_slot, *bytes, m_table->boundaries())) {
        throw FileError(QStringLiteral("cannot write the temporary file %1").arg(own));
    }
    return own;
}

QHash<QString, QString> Inputs::prepare_folder(const QString& folder, const ToolCommand& command,
                                               const std::optional<quint64>& number) const
{
    const auto& expected = m_arguments.expected_version;
    if (!QDir().mkpath(folder) ||
        (m_table->is_readable() &&
         !write_file(folder + QStringLiteral("/device.txt"),
                     expected ? m_table->rows_of(*expected) : m_table->contents()))) {
        throw FileError(QStringLiteral("cannot write to the temporary folder %1").arg(folder));
    }
    QHash<QString, QString> copies;
    for (const QString& image : command.images()) {
        const QString& shared = m_images.value(image).copy;
        copies.insert(image, number ? own_copy(folder, shared, *number) : shared);
    }
    return copies;
}

} // namespace gang
