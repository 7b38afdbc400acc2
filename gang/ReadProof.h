#pragma once

#include "gang/FileSystem.h"

#include <QString>

namespace gang
{

/// Whether a run has put a whole Intel HEX file where its read was to go. Made before the run.
class ReadProof
{
public:
    ReadProof() = default;
    explicit ReadProof(const QString& file);

    /// Why not; empty if it has, or if nothing was to be read.
    QString problem() const;

private:
    QString m_file;
    FileIdentity m_before;
};

} // namespace gang
