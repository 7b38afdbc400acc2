#include "bench/BareLoop.h"

#include <cstdlib>
#include <exception>
#include <iostream>

// Reads the 128 KiB of flash of a device of bench/device.txt and throws them away:
// bare_reader PORT BAUD

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::cerr << "usage: bare_reader PORT BAUD\n";
        return EXIT_FAILURE;
    }
    try {
        BareLoop port(argv[1], static_cast<unsigned int>(std::strtoul(argv[2], nullptr, 10)));
        port.read_flash(0x2000, 128 * 1024);
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
