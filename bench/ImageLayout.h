#pragma once

// Where the bytes of the images are that loading and saving are measured with.

constexpr unsigned int mib = 1024 * 1024;
/// As far as addresses run on with bit 23 clear.
constexpr unsigned int longest_piece = 8 * mib;

/// Address of the nth byte of an image. Bit 23 stays clear, as a HEX file cannot say it.
constexpr unsigned int address_of(unsigned int n)
{
    return (n & 0x7FFFFF) | (n & ~0x7FFFFFU) << 1;
}
