#pragma once

#include <QString>

#include <stdexcept>

namespace sim
{

/// What was asked for can't be done; what() says why, in words for the user that name no option of
/// a program.
class Error : public std::runtime_error
{
public:
    explicit Error(const QString& text) : std::runtime_error(text.toStdString()) {}

    QString text() const { return QString::fromUtf8(what()); }
};

} // namespace sim
