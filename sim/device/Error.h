#pragma once

#include <QString>

#include <stdexcept>

namespace sim
{

/// A request cannot be carried out; what() says why, in words for the user that do not mention the
/// options of a program.
class Error : public std::runtime_error
{
public:
    explicit Error(const QString& text) : std::runtime_error(text.toStdString()) {}

    QString text() const { return QString::fromUtf8(what()); }
};

} // namespace sim
