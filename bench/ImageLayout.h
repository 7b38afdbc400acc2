#pragma once

// The addresses in the images with which loading and saving are measured.

constexpr unsigned int mib = 1024 * 1024;
/// The longest run of addresses with bit 23 clear, in bytes.
constexpr unsigned int longest_piece = 8 * mib;

/// Address of the nth byte of an image. Bit 23 stays clear, because HEX files cannot express it.
constexpr unsigned int address_of(unsigned int n)
{
    return (n & 0x7FFFFF) | (n & ~0x7FFFFFU) << 1;
}
