#include "app/Console.h"

#include <QTemporaryDir>
#include <benchmark/benchmark.h>

// The cost of the frame log, compared with writing its text to the file.

namespace
{

const QByteArray& frame_of_a_row()
{
    static const QByteArray frame(265, '\xA5');
    return frame;
}

void log_a_frame(benchmark::State& state)
{
    const QTemporaryDir folder;
    serial_record.setFileName(folder.filePath(QStringLiteral("log")));
    if (!serial_record.open(QIODevice::Append)) {
        state.SkipWithError("the log cannot be written");
        return;
    }
    while (state.KeepRunning()) {
        slot_command_transmitted(frame_of_a_row());
    }
    serial_record.close();
}

void write_the_text_of_a_frame(benchmark::State& state)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("log")));
    if (!file.open(QIODevice::Append | QIODevice::Unbuffered)) {
        state.SkipWithError("the file cannot be written");
        return;
    }
    const QByteArray text = "\nTX:" + frame_of_a_row().toHex();
    while (state.KeepRunning()) {
        file.write(text);
    }
}

BENCHMARK(log_a_frame)->Unit(benchmark::kMicrosecond);
BENCHMARK(write_the_text_of_a_frame)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
