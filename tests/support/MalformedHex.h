#pragma once

#include <QByteArray>

#include <string>
#include <utility>
#include <vector>

namespace test
{

/// An Intel HEX file that is damaged or unusual.
struct MalformedHex {
    const char* name;
    QByteArray text;
    /// On the debug channel; none if the file loads anyway.
    std::vector<std::string> messages;
    /// Content of the map afterwards: addresses and bytes as upper-case hexadecimal digits.
    std::vector<std::pair<unsigned int, std::string>> pieces;
};

/// Small enough for every device of the tests; data whose address is undamaged are at 0x80 and
/// 0xA0.
const std::vector<MalformedHex>& malformed_hex_files();

} // namespace test
