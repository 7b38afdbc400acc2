#include "app/Console.h"

namespace
{

// Scripts compare this text byte by byte: its spaces, tabs and run-on lines stay as they are.
// clang-format off
constexpr const char* usage_text =
    "Zarn (R) Serial Uploader v2.0\n"
    "            Syntax:\n"
    "            zserial [-w|-W|-r|-l|-e|-V|-wv] -s \"port\" <options>\n"
    "            \n"
    "            \t-w \"file\"           write the contents of the filename to the device\n"
    "            \t-W 0x0 0x1 \"file\"   write contents of filename within word range to device\n"
    "            \t                      note: Automatically erases flash areas written\n"
    "            \t\n"
    "            \t-r \"file\"           Read device memory and write to filename\n"
    "            \t-l 0x0 0x1 \"file\"   Read device memory within word range and write to filename\n"
    "            \t\n"
    "            \t-e                    erase all device flash\n"
    "            \t-E 0x0 0x1            Erase flash in all pages contained within word addresses            \t\n"
    "            \t-v \"file\"           verify the firmware on the device\n"
    "            \t                      note: If -w specified with same file, -wv used\n"
    "            \t-wv \"file\"          write and verify the firmware in one operation\n"
    "            \t-s \"port\"           specifies which port to use\n"
    "            \t          e.g. -s /dev/ttyUSB0 on Linux or -s \\\\.\\COM1 on Windows\n"
    "            \t-V                    Request version number (before other operations)            options:\n"
    "            \t-R        reset device after operations\n"
    "            \t-M 9600   Manually suggest baudrate\n"
    "            \t-B 0x0123 Specify bootloader version\n"
    "            \t-h        use half duplex communication\n"
    "            \t-b        Start operation with QV2/3/4 bootloader entry procedure            \t          note: Default if -V or -B not specified\n"
    "            \t-xe       exclude encrypted flash\n"
    "            \t-xu       exclude unencrypted flash\n"
    "            \t-x <file> write RX/TX serial command log to <file>            \n";
// clang-format on

} // namespace

void print_syntax()
{
    out << usage_text;
}
