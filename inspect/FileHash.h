#pragma once

#include <QByteArray>
#include <QString>

#include <future>

namespace inspect
{

/// The SHA-256 of a file, calculated in the background. Empty when the file cannot be
/// read to its end.
std::future<QByteArray> sha256_of(const QString& path);

} // namespace inspect
