#include "bench/ImageLayout.h"
#include "memory/MemoryMap.h"

#include <QByteArray>
#include <QString>

#include <cstdlib>
#include <cstring>
#include <iostream>

// The tool's own loading and saving of images as a program, to be timed against other programs:
//
//   hex_program load FILE               loads and prints the number of bytes
//   hex_program convert FILE RESULT     loads and saves
//   hex_program dense SIZE RESULT       makes an image of SIZE bytes without gaps
//   hex_program device SIZE RESULT      the same, as the flash of a device of bench/device.txt
//   hex_program islands COUNT RESULT    makes an image of COUNT islands of 200 bytes in 16 MiB

namespace
{

constexpr unsigned int image_size = 16 * mib;
constexpr unsigned int island_size = 200;
constexpr unsigned int flash_begin = 0x2000;

QByteArray noise(unsigned int size)
{
    QByteArray bytes(static_cast<int>(size), '\0');
    unsigned int state = 1;
    for (char& byte : bytes) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<char>(state >> 24);
    }
    return bytes;
}

bool load(MemoryMap& image, const char* path)
{
    return image.load_from_hex_file(QString::fromLocal8Bit(path), {});
}

bool make(unsigned int start, unsigned int count, unsigned int size, unsigned int spacing,
          const char* path)
{
    MemoryMap image(size);
    const QByteArray bytes = noise(size);
    for (unsigned int i = 0; i < count; ++i) {
        image.write(address_of(start + i * spacing), bytes);
    }
    return image.save_to_hex_file(QString::fromLocal8Bit(path));
}

bool run(const char* job, const char* input, const char* result)
{
    MemoryMap image(MemoryMap::default_chunk_size);
    if (std::strcmp(job, "load") == 0) {
        const bool loaded = load(image, input);
        std::cout << image.size() << '\n';
        return loaded;
    }
    if (std::strcmp(job, "convert") == 0) {
        return load(image, input) && image.save_to_hex_file(QString::fromLocal8Bit(result));
    }
    const auto number = static_cast<unsigned int>(std::strtoul(input, nullptr, 10));
    if (std::strcmp(job, "dense") == 0) {
        const unsigned int piece = qMin(number, longest_piece);
        return make(0, number / piece, piece, piece, result);
    }
    if (std::strcmp(job, "device") == 0) {
        return make(flash_begin, 1, number, number, result);
    }
    return std::strcmp(job, "islands") == 0 &&
           make(0, number, island_size, image_size / number, result);
}

} // namespace

int main(int argc, char** argv)
{
    const bool has_result = argc == 4;
    if (!has_result && !(argc == 3 && std::strcmp(argv[1], "load") == 0)) {
        std::cerr << "usage: hex_program load FILE | convert FILE RESULT | dense SIZE RESULT | "
                     "device SIZE RESULT | islands COUNT RESULT\n";
        return EXIT_FAILURE;
    }
    return run(argv[1], argv[2], has_result ? argv[3] : nullptr) ? EXIT_SUCCESS : EXIT_FAILURE;
}
