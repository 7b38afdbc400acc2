#pragma once

#include "app/Settings.h"
#include "gang/PortNames.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <vector>

namespace gang
{

/// The arguments of zserial for one port, with placeholders replaced, file names absolute, and the
/// role of each word known.
class ToolCommand
{
public:
    /// Throws ArgumentError if zserial would refuse these arguments.
    ToolCommand(const QStringList& arguments, const PortNames& port);

    const PortNames& port() const { return m_port; }

    const Settings& settings() const { return m_settings; }

    /// Returns the images that zserial loads, except a file that it reads from the device in the
    /// same run.
    QStringList images() const;
    /// Returns the image that zserial writes to the device; empty if there is none.
    QString written_image() const;
    /// Returns the file to save a read to; empty if there is none.
    QString read_file() const;
    /// True if "-x" is given, even with an empty name.
    bool has_frame_log() const;
    /// Returns the files that zserial writes: that of a read and the frame log.
    QStringList outputs() const;

    /// Returns words that zserial ignores and operations that it does not carry out, one line each.
    /// They are most likely mistakes.
    QStringList suspicious_arguments() const;

    /// Returns the arguments to start zserial with. `copies` maps images to the files to use
    /// instead.
    QStringList words(const QHash<QString, QString>& copies) const;
    /// Same as words(), without the reset at the end.
    QStringList words_without_reset(const QHash<QString, QString>& copies) const;
    /// Returns the arguments for a run that asks for the version, verifies the written image and
    /// then, if requested, resets the device.
    QStringList words_to_certify(const QHash<QString, QString>& copies) const;

private:
    enum class Role { Option, Value, Image, ReadFile, FrameLog, Unknown };

    struct Word {
        QString text;
        Role role;
    };

    void take_words(const QStringList& arguments);
    void take_option(const QStringList& own_words);
    QStringList texts_of(Role role) const;

    PortNames m_port;
    std::vector<Word> m_words;
    Settings m_settings;
};

/// Returns the settings that zserial takes from these words. Throws ArgumentError if it would
/// refuse them.
Settings settings_from(const QStringList& words);

} // namespace gang
