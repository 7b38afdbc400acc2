#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

namespace sim
{

/// A log of the frames exchanged with a device, as the tool's option -x writes it.
struct FrameLog {
    /// A frame that the tool sent, and everything that it received before the next.
    struct Entry {
        QByteArray request;
        QByteArray response; ///< empty where nothing was received
    };

    std::vector<Entry> entries;
};

/// Parses the content of a log. What was received before anything was sent is left out.
/// So is an incomplete last line, as a killed tool leaves it. Throws Error, which
/// names `path` and the line, when the content is not that of a log.
FrameLog parse_frame_log(const QByteArray& content, const QString& path);
/// Reads a log. Throws Error when that fails or nothing was sent in it.
FrameLog read_frame_log(const QString& path);

} // namespace sim
