#include "device/FrameCodec.h"

#include <benchmark/benchmark.h>

namespace
{

/// Has as many special values as random data: 3 in 256.
QByteArray payload_of(int size)
{
    QByteArray payload;
    for (int i = 0; i < size; ++i) {
        payload.append(static_cast<char>(i * 7));
    }
    return payload;
}

void encode_payload(benchmark::State& state)
{
    const QByteArray payload = payload_of(static_cast<int>(state.range(0)));
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(frame::encode(payload));
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void decode_frame(benchmark::State& state)
{
    const QByteArray frame = frame::encode(payload_of(static_cast<int>(state.range(0))));
    QByteArray payload;
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(frame::decode(frame, payload));
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

BENCHMARK(encode_payload)->Arg(16)->Arg(261)->Arg(4096);
BENCHMARK(decode_frame)->Arg(16)->Arg(261)->Arg(4096);

} // namespace

BENCHMARK_MAIN();
