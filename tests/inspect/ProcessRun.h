#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <gtest/gtest.h>

namespace test
{

/// The result of running another program.
struct ProcessResult {
    int status;
    QByteArray out;
    QByteArray err;
};

/// Runs a program to its end; the test fails if it does not end.
inline ProcessResult run_process(const QString& program, const QStringList& words,
                                 const QByteArray& input = {})
{
    constexpr int longest_ms = 60000;
    QProcess process;
    process.start(program, words);
    process.write(input);
    process.closeWriteChannel();
    EXPECT_TRUE(process.waitForFinished(longest_ms)) << program.toStdString();
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit) << program.toStdString();
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

} // namespace test
