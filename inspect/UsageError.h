#pragma once

#include <QString>

#include <stdexcept>

namespace inspect
{

/// The command line, or a file that it names, keeps the program from doing what was asked.
class UsageError : public std::runtime_error
{
public:
    explicit UsageError(const QString& message) : std::runtime_error(message.toStdString()) {}
};

} // namespace inspect
