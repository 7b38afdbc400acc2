#pragma once

#include "gang/Arguments.h"
#include "gang/DeviceTable.h"
#include "gang/ToolCommand.h"

#include <QHash>
#include <QSet>
#include <QTemporaryDir>

#include <optional>
#include <vector>

namespace gang
{

/// Table and images as they were when the gang began, in a scratch folder: every device gets the
/// same, whatever becomes of the files meanwhile, and the record's checksums are of what was used.
class Inputs
{
public:
    /// Takes all files in. Throws ArgumentError or FileError for what no run could begin with.
    Inputs(const Arguments& arguments, const std::vector<ToolCommand>& commands);

    /// What should be put right before any device is touched, one line each.
    const QStringList& problems() const { return m_problems; }

    QString table_sha256() const { return m_table->sha256(); }

    /// In hexadecimal; of an image as the user has it.
    QString image_sha256(const QString& image) const { return m_images.value(image).sha256; }

    /// Makes a folder for a run on this port, with the table and, if there are serial numbers, this
    /// one in its images. Says where the copy of each image is. Throws FileError.
    QHash<QString, QString> furnish(const QString& folder, const ToolCommand& command,
                                    const std::optional<quint64>& number) const;
    /// The folder for that.
    QString folder_of(const PortNames& port) const;

    /// Why a device of this version cannot be as it should be now; empty if it can.
    QString misfit(unsigned short version, const ToolCommand& command) const;

private:
    struct Image {
        QString copy;
        QString sha256;
    };

    /// What one device would not have of one image.
    struct Misfit {
        QString emptiness;
        QStringList problems;
    };

    void take_images(const std::vector<ToolCommand>& commands);
    void take_image(const QString& path);
    void inspect_table(const QSet<unsigned short>& versions);
    void inspect_fit(const ToolCommand& command, const QSet<unsigned short>& versions);
    void inspect_room();
    QSet<unsigned short> versions_of(const std::vector<ToolCommand>& commands) const;
    const Misfit& misfit_of(const Profile& device, const QString& image,
                            const Settings& settings) const;
    QString own_copy(const QString& folder, const QString& shared, quint64 number) const;
    void doubt(const QStringList& problems);

    const Arguments& m_arguments;
    QTemporaryDir m_scratch;
    std::optional<DeviceTable> m_table;
    QHash<QString, Image> m_images;
    QStringList m_problems;
    mutable QHash<QString, Misfit> m_misfits; ///< those that have been worked out
};

} // namespace gang
