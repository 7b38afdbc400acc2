#pragma once

#include "gang/Arguments.h"
#include "gang/DeviceRows.h"
#include "gang/ToolCommand.h"

#include <QHash>
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
    /// Takes all files in. Throws ArgumentError for what no run could begin with.
    Inputs(const Arguments& arguments, const std::vector<ToolCommand>& commands);

    /// What should be put right before any device is touched, one line each.
    const QStringList& problems() const { return m_problems; }

    QString table_sha256() const { return m_table_sha256; }

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

    void take_table(const Arguments& arguments);
    void take_images(const std::vector<ToolCommand>& commands);
    void take_image(const QString& path);
    void inspect_image(const QString& path, const QString& copy);
    void inspect_fit(const Arguments& arguments, const std::vector<ToolCommand>& commands);
    void doubt(const QString& problem);

    QTemporaryDir m_scratch;
    std::optional<QByteArray> m_table; ///< nothing: it cannot be read
    QString m_table_sha256;
    std::optional<DeviceRows> m_rows;
    std::optional<NumberSlot> m_slot;
    QHash<QString, Image> m_images;
    QStringList m_problems;
};

} // namespace gang
