#include "bench/ImageLayout.h"
#include "memory/MemoryMap.h"

#include <QTemporaryDir>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>

// Images of the sizes found in devices, through the same calls that the tool makes.

namespace
{

constexpr unsigned int chunk_size = 16; // as in the tool
constexpr unsigned int row_size = 256;
constexpr unsigned int island_size = 100;
constexpr unsigned int island_spacing = 256;

QByteArray random_bytes(unsigned int count)
{
    std::mt19937 random(count);
    QByteArray bytes(static_cast<int>(count), '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(random() & 0xFF);
    }
    return bytes;
}

/// An image in a HEX file, built from pieces of at most `piece_size` bytes.
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

/// Makes an image of the benchmark's number of bytes or islands.
using Fill = void (*)(HexFile& file, unsigned int amount);

void fill_dense(HexFile& file, unsigned int size)
{
    for (unsigned int n = 0; n < size; n += longest_piece) {
        file.add(address_of(n), random_bytes(std::min(longest_piece, size - n)));
    }
}

void fill_with_islands(HexFile& file, unsigned int count)
{
    const QByteArray bytes = random_bytes(island_size);
    for (unsigned int i = 0; i < count; ++i) {
        file.add(address_of(i * island_spacing), bytes);
    }
}

/// From the last to the first, so that loading has to sort them before it looks for overlaps.
void fill_with_descending_islands(HexFile& file, unsigned int count)
{
    const QByteArray bytes = random_bytes(island_size);
    for (unsigned int i = count; i > 0; --i) {
        file.add(address_of((i - 1) * island_spacing), bytes);
    }
}

/// An image file of the benchmark's size, and the map that it is loaded into.
class Subject
{
public:
    Subject(benchmark::State& state, Fill fill)
        : m_state(state),
          m_file(fill == fill_dense ? longest_piece : island_size)
    {
        fill(m_file, static_cast<unsigned int>(state.range(0)));
        m_file.save();
        load();
    }

    MemoryMap& map() { return m_map; }

    /// Loads the file or ends the benchmark with an error.
    void load()
    {
        m_map.clear();
        if (!m_map.load_from_hex_file(m_file.path(), {})) {
            m_state.SkipWithError("the image does not load");
        }
    }

    void save()
    {
        if (!m_map.save_to_hex_file(m_file.path())) {
            m_state.SkipWithError("the image cannot be saved");
        }
    }

    void count_bytes() const
    {
        m_state.SetBytesProcessed(static_cast<std::int64_t>(m_state.iterations()) * m_file.bytes());
    }

private:
    benchmark::State& m_state;
    HexFile m_file;
    MemoryMap m_map{chunk_size};
};

void load(benchmark::State& state, Fill fill)
{
    Subject subject(state, fill);
    while (state.KeepRunning()) {
        subject.load();
    }
    subject.count_bytes();
}

void save(benchmark::State& state, Fill fill)
{
    Subject subject(state, fill);
    while (state.KeepRunning()) {
        subject.save();
    }
    subject.count_bytes();
}

/// Every row from the first byte of the image to the last, as in a write to a device.
void assemble_rows(benchmark::State& state, Fill fill)
{
    Subject subject(state, fill);
    const auto amount = static_cast<unsigned int>(state.range(0));
    const unsigned int span = fill == fill_dense ? amount : amount * island_spacing;
    QByteArray row(row_size, '\xFF');
    while (state.KeepRunning()) {
        for (unsigned int n = 0; n < span; n += row_size) {
            benchmark::DoNotOptimize(subject.map().read(address_of(n), row_size, row.data()));
        }
    }
    subject.count_bytes();
}

void sizes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Unit(benchmark::kMillisecond);
    for (const int size : {1, 4, 16, 64}) {
        benchmark->Arg(size * static_cast<int>(mib));
    }
}

void counts(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Unit(benchmark::kMillisecond);
    for (const int count : {1000, 10000, 100000}) {
        benchmark->Arg(count);
    }
}

void add(const char* name, void (*job)(benchmark::State&, Fill))
{
    benchmark::RegisterBenchmark((std::string(name) + "_of_dense").c_str(), job, fill_dense)
        ->Apply(sizes);
    benchmark::RegisterBenchmark((std::string(name) + "_of_islands").c_str(), job,
                                 fill_with_islands)
        ->Apply(counts);
}

} // namespace

int main(int argc, char** argv)
{
    add("load", load);
    add("save", save);
    benchmark::RegisterBenchmark("load_of_descending_islands", load, fill_with_descending_islands)
        ->Apply(counts);
    add("assemble_rows", assemble_rows);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
