#pragma once

#include <QByteArray>

#include <string>
#include <utility>
#include <vector>

namespace test
{

/// An Intel HEX file that is not as it should be, or is so in an unusual way.
struct MalformedHex {
    const char* name;
    QByteArray text;
    /// On the debug channel; none when the file loads all the same.
    std::vector<std::string> messages;
    /// What the map holds afterwards: addresses and bytes as upper-case hexadecimal digits.
    std::vector<std::pair<unsigned int, std::string>> pieces;
};

/// Small enough for every device of the tests; data that stay in place lie at 0x80 and 0xA0.
const std::vector<MalformedHex>& malformed_hex_files();

} // namespace test
