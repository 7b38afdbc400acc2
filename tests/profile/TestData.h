#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

#include <stdexcept>

namespace test
{

/// The bytes of a file of tests/profile/data.
inline QByteArray test_data(const char* file_name)
{
    QFile file(QStringLiteral(PROFILE_TEST_DATA "/") + QLatin1String(file_name));
    if (!file.open(QIODevice::ReadOnly)) {
        throw std::runtime_error("no test data " + file.fileName().toStdString());
    }
    return file.readAll();
}

} // namespace test
