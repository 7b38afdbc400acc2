#include "bench/InstantPeer.h"
#include "device/FrameCodec.h"
#include "device/ZarnSerialDevice.h"

#include <QCoreApplication>
#include <benchmark/benchmark.h>

#include <array>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

// One read of a row, there and back, against a peer that answers at once: what the uploader's
// device object needs for it beside the barest loop of system calls that does the same exchange.

namespace
{

constexpr unsigned short row_size = 256;

QByteArray read_command()
{
    return QByteArray("\x01\x80\x00\x10\x00", 5);
}

QByteArray answer_frame()
{
    return frame::encode(read_command() + QByteArray(row_size, '\x37'));
}

void transaction_of_the_device_object(benchmark::State& state)
{
    const InstantPeer peer(answer_frame());
    ZarnSerialDevice device(peer.port_path(), nullptr, 115200, false, 0);
    QByteArray response;
    device.open_port();
    for (auto _ : state) {
        if (!device.send_and_receive(read_command(), response, row_size, 1, 300)) {
            state.SkipWithError("a transaction failed");
            break;
        }
    }
    state.SetItemsProcessed(state.iterations());
}

/// Sends a frame and reads until an answer is complete; false when none comes.
bool exchange(int port, const QByteArray& frame, QByteArray& heard)
{
    heard.resize(0);
    if (::write(port, frame.constData(), static_cast<std::size_t>(frame.size())) != frame.size()) {
        return false;
    }
    std::array<char, 4096> buffer{};
    while (!frame::is_terminated(heard)) {
        pollfd ready{port, POLLIN, 0};
        if (::poll(&ready, 1, 300) <= 0) {
            return false;
        }
        const ssize_t count = ::read(port, buffer.data(), buffer.size());
        heard.append(buffer.data(), static_cast<int>(qMax<ssize_t>(count, 0)));
    }
    return true;
}

void transaction_of_a_bare_loop(benchmark::State& state)
{
    const InstantPeer peer(answer_frame());
    const int port = ::open(peer.port_path().toLocal8Bit().constData(), O_RDWR | O_NOCTTY);
    const QByteArray frame = frame::encode(read_command());
    QByteArray heard;
    QByteArray payload;
    for (auto _ : state) {
        if (!exchange(port, frame, heard) || frame::decode(heard, payload)) {
            state.SkipWithError("a transaction failed");
            break;
        }
    }
    ::close(port);
    state.SetItemsProcessed(state.iterations());
}

BENCHMARK(transaction_of_the_device_object)->UseRealTime();
BENCHMARK(transaction_of_a_bare_loop)->UseRealTime();

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
