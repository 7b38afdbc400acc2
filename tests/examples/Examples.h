#pragma once

#include "profile/Profile.h"
#include "profile/ProfileTable.h"

#include <QFile>
#include <QString>

#include <memory>
#include <stdexcept>
#include <vector>

namespace test
{

inline QString example_path(const QString& file_name)
{
    return QStringLiteral(EXAMPLES_FOLDER "/") + file_name;
}

/// The lines of the example table.
inline std::vector<ProfileTableLine> example_lines()
{
    QFile file(example_path(QStringLiteral("device.txt")));
    if (!file.open(QIODevice::ReadOnly)) {
        throw std::runtime_error("no example table " + file.fileName().toStdString());
    }
    std::vector<ProfileTableLine> lines;
    while (const auto line = read_profile_table_line(file)) {
        lines.push_back(*line);
    }
    return lines;
}

/// The device of the example table that bears this name.
inline std::unique_ptr<Profile> example_device(const QString& name)
{
    for (const ProfileTableLine& line : example_lines()) {
        if (line.kind == ProfileTableLine::Kind::Row &&
            line.fields.at(Profile::device_name) == name) {
            return std::make_unique<Profile>(line.fields);
        }
    }
    throw std::runtime_error("no example device " + name.toStdString());
}

/// "LARK-32" as a part of a test's name.
inline std::string test_name(const char* device)
{
    return QString::fromUtf8(device).replace(QLatin1Char('-'), QLatin1Char('_')).toStdString();
}

} // namespace test
