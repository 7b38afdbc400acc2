#pragma once

#include "tests/app/QuadTest.h"

namespace test
{

/// A command of an operation on QUAD.
struct Step {
    std::string command;
    /// What the tool prints when the command is acknowledged, and when it is not.
    QByteArray progress;
    QByteArray failure{};
    /// What it changes in the device.
    Piece effect{};
    /// Sent, too, when the command has failed.
    Commands aftermath{};
};

/// An operation of the tool on a device that carries out every command.
struct Operation {
    const char* name;
    const char* arguments;
    std::vector<Piece> before; ///< in the device
    std::vector<Step> steps;
    QByteArray begun; ///< printed at the start
    QByteArray first_progress;
    QByteArray failed;
    QByteArray done;
    /// Whether what is printed at the start appears before the progress.
    bool shows_begin_at_once = false;
    std::vector<Piece> saved{}; ///< to out.hex
};

// On image.hex where they take an image.
Operation write_and_verify();
std::vector<Operation> other_operations();

/// image.hex: both rows of the page at 0x80, the first row of the page at 0x100, and EEPROM.
QByteArray operations_image();

} // namespace test
