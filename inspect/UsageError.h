#pragma once

#include <QString>

#include <stdexcept>

namespace inspect
{

/// The command cannot be carried out because of the command line or a file that it names.
class UsageError : public std::runtime_error
{
public:
    explicit UsageError(const QString& message) : std::runtime_error(message.toStdString()) {}
};

} // namespace inspect
