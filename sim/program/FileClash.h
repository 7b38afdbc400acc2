#pragma once

#include <QString>

#include <optional>
#include <vector>

namespace sim
{

/// A file that the user named, and its use.
struct NamedFile {
    enum class Use {
        Read,
        Written, ///< some time during the run
        Linked,  ///< its name becomes a symbolic link
    };

    QString option; ///< such as "--trace"
    QString path;   ///< empty for none
    Use use = Use::Read;
};

/// Two names lead to the same file, whose content would be lost.
struct FileClash {
    QString option;
    QString other_option;
};

/// The first clash among the files. Files that are only read may be the same, as may those that
/// aren't regular, such as a terminal.
std::optional<FileClash> find_clash(const std::vector<NamedFile>& files);

} // namespace sim
