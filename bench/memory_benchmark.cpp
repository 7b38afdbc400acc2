#include "memory/MemoryMap.h"

#include <QTemporaryDir>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <random>

// Images of the sizes that devices have, through the same calls that the tool makes.

namespace
{

constexpr unsigned int mib = 1024 * 1024;
constexpr unsigned int image_size = 16 * mib;
constexpr unsigned int longest_piece = 8 * mib; // as far as addresses run on with bit 23 clear
constexpr unsigned int chunk_size = 16;         // as in the tool
constexpr unsigned int row_size = 256;
constexpr unsigned int island_count = 20000;
constexpr unsigned int island_size = 200;

/// Address of the nth byte of an image. Bit 23 stays clear, as a HEX file cannot say it.
unsigned int address_of(unsigned int n)
{
    return (n & 0x7FFFFF) | (n & ~0x7FFFFFU) << 1;
}

QByteArray random_bytes(unsigned int count)
{
    std::mt19937 random(count);
    QByteArray bytes(static_cast<int>(count), '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(random() & 0xFF);
    }
    return bytes;
}

/// An image in a HEX file, put together from pieces of at most `piece_size`.
class HexFile
{
public:
    explicit HexFile(unsigned int piece_size) : m_image(piece_size) {}

    QString path() const { return m_folder.filePath(QStringLiteral("image.hex")); }

    void add(unsigned int address, const QByteArray& bytes)
    {
        m_image.write(address, bytes);
        m_bytes += bytes.size();
    }

    bool save() const { return m_image.save_to_hex_file(path()); }

    std::int64_t bytes() const { return m_bytes; }

private:
    QTemporaryDir m_folder;
    MemoryMap m_image;
    std::int64_t m_bytes = 0;
};

void fill_dense(HexFile& file, unsigned int size)
{
    for (unsigned int n = 0; n < size; n += longest_piece) {
        file.add(address_of(n), random_bytes(std::min(longest_piece, size - n)));
    }
    file.save();
}

void fill_with_islands(HexFile& file)
{
    const QByteArray bytes = random_bytes(island_size);
    for (unsigned int i = 0; i < island_count; ++i) {
        file.add(address_of(i * (image_size / island_count)), bytes);
    }
    file.save();
}

/// Loads the file or ends the benchmark with an error.
bool load(benchmark::State& state, MemoryMap& map, const HexFile& file)
{
    const bool loaded = map.load_from_hex_file(file.path(), {});
    if (!loaded) {
        state.SkipWithError("the image does not load");
    }
    return loaded;
}

void count_bytes(benchmark::State& state, std::int64_t bytes)
{
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * bytes);
}

void load_again_and_again(benchmark::State& state, const HexFile& file)
{
    MemoryMap map(chunk_size);
    while (state.KeepRunning()) {
        map.clear();
        if (!load(state, map, file)) {
            return;
        }
    }
    count_bytes(state, file.bytes());
}

void load_dense(benchmark::State& state)
{
    HexFile file(longest_piece);
    fill_dense(file, static_cast<unsigned int>(state.range(0)));
    load_again_and_again(state, file);
    state.SetComplexityN(state.range(0));
}

void load_islands(benchmark::State& state)
{
    HexFile file(island_size);
    fill_with_islands(file);
    load_again_and_again(state, file);
}

void save_dense(benchmark::State& state)
{
    HexFile file(longest_piece);
    fill_dense(file, static_cast<unsigned int>(state.range(0)));
    MemoryMap map(chunk_size);
    if (!load(state, map, file)) {
        return;
    }
    while (state.KeepRunning()) {
        if (!map.save_to_hex_file(file.path())) {
            state.SkipWithError("the image cannot be saved");
            return;
        }
    }
    count_bytes(state, file.bytes());
    state.SetComplexityN(state.range(0));
}

void assemble_all_rows(benchmark::State& state, const HexFile& file)
{
    MemoryMap map(chunk_size);
    if (!load(state, map, file)) {
        return;
    }
    QByteArray row(row_size, '\xFF');
    while (state.KeepRunning()) {
        for (unsigned int n = 0; n < image_size; n += row_size) {
            benchmark::DoNotOptimize(map.read(address_of(n), row_size, row.data()));
        }
    }
    count_bytes(state, image_size);
}

void assemble_rows_of_dense(benchmark::State& state)
{
    HexFile file(longest_piece);
    fill_dense(file, image_size);
    assemble_all_rows(state, file);
}

void assemble_rows_of_islands(benchmark::State& state)
{
    HexFile file(island_size);
    fill_with_islands(file);
    assemble_all_rows(state, file);
}

void check_overlaps_of_islands(benchmark::State& state)
{
    HexFile file(island_size);
    fill_with_islands(file);
    MemoryMap map(chunk_size);
    if (!load(state, map, file)) {
        return;
    }
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(map.has_overlaps());
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * island_count);
}

BENCHMARK(load_dense)
    ->Arg(mib)
    ->Arg(4 * mib)
    ->Arg(16 * mib)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);
BENCHMARK(load_islands)->Unit(benchmark::kMillisecond);
BENCHMARK(save_dense)
    ->Arg(mib)
    ->Arg(4 * mib)
    ->Arg(16 * mib)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);
BENCHMARK(assemble_rows_of_dense)->Unit(benchmark::kMillisecond);
BENCHMARK(assemble_rows_of_islands)->Unit(benchmark::kMillisecond);
BENCHMARK(check_overlaps_of_islands)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
