#pragma once

#include "tests/support/Bytes.h"

#include <QFile>

#include <stdexcept>
#include <string>
#include <vector>

namespace test
{

/// A line of examples/frames.txt: what a frame stands for, or that it is none.
struct FrameVector {
    std::string line;
    QByteArray payload; ///< empty if the frame is to be refused
    QByteArray frame;
};

/// The vector in a line of the file; `verdict` is its first word.
inline FrameVector frame_vector(const QByteArray& line, const QByteArray& verdict)
{
    const QByteArray text = line.split('#').first().trimmed();
    const int bar = text.indexOf('|');
    const QByteArray payload = text.mid(verdict.size(), bar - verdict.size());
    return {line.toStdString(), QByteArray::fromHex(payload),
            QByteArray::fromHex(text.mid(bar + 1))};
}

/// The vectors with this verdict. Throws if there is none, and if a line with a bar has no verdict.
inline std::vector<FrameVector> frame_vectors(const QByteArray& wanted)
{
    const QByteArrayList verdicts{"good", "accepted", "host", "refused"};
    QFile file(QStringLiteral(FRAME_VECTORS_FILE));
    if (!file.open(QIODevice::ReadOnly)) {
        throw std::runtime_error("no file of frames");
    }
    std::vector<FrameVector> vectors;
    for (const QByteArray& line : file.readAll().split('\n')) {
        const QByteArray verdict = line.trimmed().split(' ').first();
        if (line.contains('|') && !verdicts.contains(verdict)) {
            throw std::runtime_error("no verdict: " + line.toStdString());
        }
        if (line.contains('|') && verdict == wanted) {
            vectors.push_back(frame_vector(line.trimmed(), verdict));
        }
    }
    if (vectors.empty()) {
        throw std::runtime_error("no frames: " + wanted.toStdString());
    }
    return vectors;
}

} // namespace test
