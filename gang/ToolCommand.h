#pragma once

#include "app/Settings.h"
#include "gang/PortNames.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <vector>

namespace gang
{

/// The arguments of the tool for one port: placeholders replaced, file names absolute, and every
/// word known by what it is to the tool.
class ToolCommand
{
public:
    /// Throws ArgumentError if the tool would refuse these arguments.
    ToolCommand(const QStringList& arguments, const PortNames& port);

    const PortNames& port() const { return m_port; }

    const Settings& settings() const { return m_settings; }

    /// The images that the tool loads, without the file that it reads into itself.
    QStringList images() const;
    /// The image that it writes; empty if it writes none.
    QString written_image() const;
    /// The file of a read; empty if there is none.
    QString read_file() const;
    /// Whether it is asked for a frame log, be it one without a name.
    bool has_frame_log() const;
    /// The files that it writes on this machine: that of a read, and the frame log.
    QStringList outputs() const;

    /// Words that the tool passes over, and operations that it does not carry out: most likely not
    /// what was meant.
    QStringList doubts() const;

    /// The words to start the tool with; `copies` names the files to use in place of images.
    QStringList words(const QHash<QString, QString>& copies) const;
    /// The same without the reset at the end.
    QStringList words_without_reset(const QHash<QString, QString>& copies) const;
    /// A run that finds out the version and verifies the written image, then resets if that is
    /// wanted.
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

/// The settings that the tool takes from these words. Throws ArgumentError if it would refuse them.
Settings settings_from(const QStringList& words);

} // namespace gang
