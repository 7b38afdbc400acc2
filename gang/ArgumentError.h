#pragma once

#include <QString>

#include <stdexcept>

namespace gang
{

/// The gang cannot start as requested; what() explains why to the user.
class ArgumentError : public std::runtime_error
{
public:
    explicit ArgumentError(const QString& text) : std::runtime_error(text.toStdString()) {}
};

} // namespace gang
