#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

namespace sim
{

/// What the tool wrote down of its talk with a device: the file of its option -x.
struct FrameLog {
    /// A frame that the tool sent, and all that it received until it sent the next.
    struct Entry {
        QByteArray request;
        QByteArray response; ///< empty where nothing was received
    };

    std::vector<Entry> entries;
};

/// Takes the content of a log apart. What was received before anything was sent is left out.
/// So is a last line that is cut, as a tool that was killed leaves it. Throws Error, which
/// names `path` and the line, when the content is not that of a log.
FrameLog parse_frame_log(const QByteArray& content, const QString& path);
/// Reads a log. Throws Error when that fails or nothing was sent in it.
FrameLog read_frame_log(const QString& path);

} // namespace sim
