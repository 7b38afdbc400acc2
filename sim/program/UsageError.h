#pragma once

#include <QString>

#include <stdexcept>

namespace sim
{

/// The command line can't be carried out; what() says why, in words for the user.
class UsageError : public std::runtime_error
{
public:
    explicit UsageError(const QString& text) : std::runtime_error(text.toStdString()) {}
};

} // namespace sim
