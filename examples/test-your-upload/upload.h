#pragma once

#include <QString>

#include <optional>

/// The code under test: identifies the device on `port`, erases it and writes the Intel HEX file
/// `image`. Returns the error, or nothing on success.
std::optional<QString> upload(const QString& port, const QString& image);
