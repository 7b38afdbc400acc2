#include "app/Console.h"
#include "bench/BareLoop.h"
#include "bench/InstantPeer.h"
#include "device/FrameCodec.h"
#include "device/ZarnSerialDevice.h"
#include "memory/MemoryMap.h"

#include <QFile>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

#include <string>

// Whole exchanges with a peer that answers at once, by the uploader's device object and by a
// minimal loop of system calls that does the same. To be run in this folder, where the device table
// is.

namespace
{

constexpr unsigned int baud = 460800;
constexpr unsigned short version = 0x0203;
constexpr unsigned int flash_begin = 0x2000;
constexpr unsigned int flash_size = 128 * 1024;
constexpr unsigned short row_size = 256;
constexpr int echo_size = 5;
constexpr char read_command = 0x01;

QByteArray row_read_command()
{
    return QByteArray("\x01\x40\x00\x20\x00", echo_size);
}

/// Answers reads with a row and everything else with its acknowledgement.
QByteArray answer_to(const QByteArray& frame)
{
    static const QByteArray row(row_size, '\x37');
    QByteArray request;
    frame::decode(frame, request);
    return frame::encode(request.at(0) == read_command ? request.left(echo_size) + row
                                                       : request.left(1));
}

void transaction_of_the_device_object(benchmark::State& state)
{
    const InstantPeer peer(answer_to);
    ZarnSerialDevice device(peer.port_path(), nullptr, baud, false, version);
    QByteArray response;
    device.open_port();
    while (state.KeepRunning()) {
        if (!device.send_and_receive(row_read_command(), response, row_size, 1, 300)) {
            state.SkipWithError("a transaction failed");
            break;
        }
    }
    state.SetItemsProcessed(state.iterations());
}

void transaction_of_a_bare_loop(benchmark::State& state)
{
    const InstantPeer peer(answer_to);
    BareLoop port(peer.port_path().toStdString(), baud);
    const std::string command = row_read_command().toStdString();
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(port.exchange(command));
    }
    state.SetItemsProcessed(state.iterations());
}

void read_of_the_device_object(benchmark::State& state)
{
    const InstantPeer peer(answer_to);
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("read.hex")));
    const bool never = false;
    ZarnSerialDevice device(peer.port_path(), nullptr, baud, false, version);
    while (state.KeepRunning()) {
        if (!device.read(file, never, true, true)) {
            state.SkipWithError("the read failed");
            break;
        }
    }
    state.SetBytesProcessed(state.iterations() * flash_size);
}

void read_of_a_bare_loop(benchmark::State& state)
{
    const InstantPeer peer(answer_to);
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("read.bin")));
    BareLoop port(peer.port_path().toStdString(), baud);
    while (state.KeepRunning()) {
        if (!file.open(QIODevice::WriteOnly)) {
            state.SkipWithError("the file cannot be written");
            break;
        }
        file.write(port.read_flash(flash_begin, flash_size).data(), flash_size);
        file.close();
    }
    state.SetBytesProcessed(state.iterations() * flash_size);
}

void write_of_the_device_object(benchmark::State& state)
{
    const InstantPeer peer(answer_to);
    const bool never = false;
    MemoryMap image(MemoryMap::default_chunk_size);
    image.write(flash_begin, QByteArray(flash_size, '\x37'));
    ZarnSerialDevice device(peer.port_path(), nullptr, baud, false, version);
    while (state.KeepRunning()) {
        if (!device.write(&image, never, true, true)) {
            state.SkipWithError("the write failed");
            break;
        }
    }
    state.SetBytesProcessed(state.iterations() * flash_size);
}

void write_of_a_bare_loop(benchmark::State& state)
{
    const InstantPeer peer(answer_to);
    const std::string image(flash_size, '\x37');
    BareLoop port(peer.port_path().toStdString(), baud);
    while (state.KeepRunning()) {
        port.write_flash(flash_begin, image);
    }
    state.SetBytesProcessed(state.iterations() * flash_size);
}

/// Every other answer is lost: one wait of 300 ms, and the second attempt succeeds.
void transaction_with_a_lost_response(benchmark::State& state)
{
    int heard = 0;
    const InstantPeer peer([&heard](const QByteArray& frame) {
        return ++heard % 2 == 1 ? QByteArray() : answer_to(frame);
    });
    ZarnSerialDevice device(peer.port_path(), nullptr, baud, false, version);
    QByteArray response;
    device.open_port();
    while (state.KeepRunning()) {
        if (!device.send_and_receive(row_read_command(), response, row_size, 2, 300)) {
            state.SkipWithError("a transaction failed");
            break;
        }
    }
}

BENCHMARK(transaction_of_the_device_object)->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(transaction_of_a_bare_loop)->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(read_of_the_device_object)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(read_of_a_bare_loop)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(write_of_the_device_object)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(write_of_a_bare_loop)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(transaction_with_a_lost_response)
    ->UseRealTime()
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    make_application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    delete a;
    return 0;
}
