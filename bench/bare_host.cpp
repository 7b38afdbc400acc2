#include "bench/BareLoop.h"

#include <cstdlib>
#include <exception>
#include <iostream>

// Reads and discards, or writes, the 128 KiB of flash of a device of bench/device.txt:
// bare_host PORT BAUD read|write

namespace
{

constexpr unsigned int flash_begin = 0x2000;
constexpr unsigned int flash_size = 128 * 1024;

void run(BareLoop& port, const std::string& job)
{
    if (job == "read") {
        port.read_flash(flash_begin, flash_size);
    } else {
        port.write_flash(flash_begin, std::string(flash_size, '\x37'));
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 4) {
        std::cerr << "usage: bare_host PORT BAUD read|write\n";
        return EXIT_FAILURE;
    }
    try {
        BareLoop port(argv[1], static_cast<unsigned int>(std::strtoul(argv[2], nullptr, 10)));
        run(port, argv[3]);
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
