#pragma once

#include <QByteArray>
#include <QStringList>

namespace inspect
{

/// Writes an output file, completely or not at all where that is possible. Throws
/// UsageError when it cannot be written, and when it is one of the `inputs`.
void write_output(const QString& path, const QStringList& inputs, const QByteArray& content);

} // namespace inspect
