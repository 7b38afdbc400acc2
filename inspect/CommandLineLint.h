#pragma once

#include "app/Settings.h"
#include "inspect/Problem.h"

#include <QStringList>

#include <vector>

class Profile;

namespace inspect
{

/// What the words of a command line come to that was probably not meant, whatever the device.
std::vector<Problem> lint_words(const QStringList& arguments);

/// A file, and what for.
struct FileUse {
    QString purpose; ///< such as "-w"
    QString name;
    bool is_written;
};

/// The files that the run opens after its command line has been taken, in their order.
std::vector<FileUse> files_used(const Settings& settings, const QString& table);

/// Those of them that are images and are there when the run begins: not what is verified after it
/// has been read back.
std::vector<FileUse> images_used(const Settings& settings);

/// The same for what is asked for on the whole. `profile` may be null: no device.
std::vector<Problem> lint_settings(const Settings& settings, const Profile* profile,
                                   const QString& table);

} // namespace inspect
