#pragma once

#include <QString>

#include <stdexcept>

namespace gang
{

/// What was asked for cannot be begun; what() says why, in words for the user.
class ArgumentError : public std::runtime_error
{
public:
    explicit ArgumentError(const QString& text) : std::runtime_error(text.toStdString()) {}
};

} // namespace gang
