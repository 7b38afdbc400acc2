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

/// Copies of table and images, made in a scratch folder at the start. Every device gets the same
/// data even if the files change later, and the checksums in the record are those of what was used.
class Inputs
{
public:
    /// Reads and checks all files. Throws ArgumentError or FileError if no run could succeed.
    Inputs(const Arguments& arguments, const std::vector<ToolCommand>& commands);

    /// Returns what should be fixed before any device is touched, one line each.
    const QStringList& problems() const { return m_problems; }

    QString table_sha256() const { return m_table->sha256(); }

    /// In lower-case hexadecimal, of the image as the user supplied it, without a serial number.
    QString image_sha256(const QString& image) const { return m_images.value(image).sha256; }

    /// Creates the working folder of a run, with the table and, if `number` is given, images that
    /// contain this number. Returns the copy to use for each image. Throws FileError.
    QHash<QString, QString> prepare_folder(const QString& folder, const ToolCommand& command,
                                           const std::optional<quint64>& number) const;
    /// Returns the working folder of the runs on a port.
    QString folder_of(const PortNames& port) const;

    /// Returns why a device of this version cannot hold the written image as requested, although
    /// its upload succeeded; empty if it can.
    QString fit_problem(unsigned short version, const ToolCommand& command) const;

private:
    struct Image {
        QString copy;
        QString sha256;
    };

    /// Why a device cannot take an image.
    struct FitProblems {
        QString nothing_written;
        QStringList problems;
    };

    void take_images(const std::vector<ToolCommand>& commands);
    void take_image(const QString& path);
    void inspect_table(const QSet<unsigned short>& versions);
    void inspect_fit(const ToolCommand& command, const QSet<unsigned short>& versions);
    void inspect_room();
    QSet<unsigned short> versions_of(const std::vector<ToolCommand>& commands) const;
    const FitProblems& fit_problems_of(const Profile& device, const QString& image,
                                       const Settings& settings) const;
    QString own_copy(const QString& folder, const QString& shared, quint64 number) const;
    void add_problems(const QStringList& problems);

    const Arguments& m_arguments;
    QTemporaryDir m_scratch;
    std::optional<DeviceTable> m_table;
    QHash<QString, Image> m_images;
    QStringList m_problems;
    mutable QHash<QString, FitProblems> m_fit_problems; ///< results of fit_problems_of() so far
};

} // namespace gang
