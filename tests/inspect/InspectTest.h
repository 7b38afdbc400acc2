#pragma once

#include "inspect/Program.h"
#include "profile/Profile.h"
#include "tests/support/HexRecords.h"

#include <QByteArray>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace test
{

/// Runs command lines of the program in this process, on files of a folder of its own.
class InspectTest : public testing::Test
{
protected:
    QString path(const QString& name) const { return m_folder.filePath(name); }

    QString put_file(const QString& name, const QByteArray& content) const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << name.toStdString();
        EXPECT_EQ(file.write(content), content.size());
        return path(name);
    }

    QByteArray file(const QString& name) const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
        return file.readAll();
    }

private:
    QTemporaryDir m_folder;
};

inline inspect::Outcome inspect_run(const QStringList& words)
{
    return inspect::run(QStringList(QStringLiteral("zserial-inspect")) + words, {});
}

inline QJsonObject inspect_json(const QStringList& words)
{
    const inspect::Outcome outcome = inspect_run(words + QStringList(QStringLiteral("--json")));
    EXPECT_EQ(outcome.err, QByteArray());
    const QJsonDocument document = QJsonDocument::fromJson(outcome.out);
    EXPECT_TRUE(document.isObject()) << outcome.out.constData();
    return document.object();
}

/// "T012:3:9": code, line and column of each problem, in the order of the report.
inline std::vector<std::string> places(const QJsonObject& report)
{
    std::vector<std::string> texts;
    for (const QJsonValue problem : report.value(QStringLiteral("problems")).toArray()) {
        texts.push_back(QStringLiteral("%1:%2:%3")
                            .arg(problem[QStringLiteral("code")].toString())
                            .arg(problem[QStringLiteral("line")].toInt())
                            .arg(problem[QStringLiteral("column")].toInt())
                            .toStdString());
    }
    return texts;
}

inline std::vector<std::string> codes(const QJsonObject& report)
{
    std::vector<std::string> texts;
    for (const std::string& place : places(report)) {
        texts.push_back(place.substr(0, place.find(':')));
    }
    return texts;
}

/// What to change in a row, by the number of the column.
using Changes = std::map<int, const char*>;

/// The row of a device without problems, with some columns changed.
inline QByteArray table_row(const Changes& changes = {})
{
    std::vector<const char*> fields = {"v0110:",     "115200", "LARK-32",    "0x8000", "0x8000",
                                       "0x0",        "0x800",  "0x400",      "0x80",   "2",
                                       "2",          "0x80",   "0xFFFF0000", "2",      "0x10000",
                                       "0x10200",    "1",      "1",          "0x10",   "0x10",
                                       "0xFF000000", "1",      "0x200",      "0x800",  "0x4000"};
    for (const auto& [column, text] : changes) {
        fields.at(static_cast<std::size_t>(column - 1)) = text;
    }
    QByteArray row;
    for (const char* field : fields) {
        row += QByteArray(row.isEmpty() ? "" : "\t") + field;
    }
    return row + "\n";
}

/// The profile of that device.
inline std::unique_ptr<Profile> lark_profile(const Changes& changes = {})
{
    QStringList fields = QString::fromUtf8(table_row(changes)).trimmed().split(QLatin1Char('\t'));
    fields.first().replace(QLatin1Char('v'), QLatin1String("0x")).remove(QLatin1Char(':'));
    return std::make_unique<Profile>(fields);
}

} // namespace test
