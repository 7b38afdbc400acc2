#pragma once

#include "tests/device/OperationImages.h"
#include "tests/support/Bytes.h"
#include "tests/support/SignalRecorder.h"

#include <string>

// Devices of operations_data whose geometry some operation cannot work with.

struct GeometryFault {
    const char* device;
    const char* attribute;
    const char* value;
    const char* expected;

    SignalRecorder::Lines message() const
    {
        return {std::string("sig_error unusable geometry in device profile '") + device +
                "': " + attribute + " is " + value + ", expected " + expected};
    }
};

constexpr GeometryFault zero_flash_row{"zero-flash-row", "flash_row_size", "0", "2 to 16777216"};
constexpr GeometryFault flash_row_below_word{"flash-row-below-word", "flash_row_size", "1",
                                             "2 to 16777216"};
constexpr GeometryFault zero_flash_block{"zero-flash-block", "flash_block_size", "0", "2 to 768"};
constexpr GeometryFault flash_block_below_word{"flash-block-below-word", "flash_block_size", "1",
                                               "2 to 768"};
constexpr GeometryFault flash_block_above_flash{"flash-block-above-flash", "flash_block_size",
                                                "769", "2 to 768"};
constexpr GeometryFault zero_flash_page{"zero-flash-page", "flash_page_size", "0", "1 to 768"};
constexpr GeometryFault page_above_flash{"page-above-flash", "flash_page_size", "769", "1 to 768"};
constexpr GeometryFault no_flash_words{"no-flash-words", "flash_word_size", "0", "1 to 16777216"};
constexpr GeometryFault flash_divisor_zero{"flash-divisor-zero", "flash_words_per_address", "4",
                                           "1 to 2"};
constexpr GeometryFault zero_eeprom_row{"zero-eeprom-row", "eeprom_row_size", "0", "1 to 16777216"};
constexpr GeometryFault eeprom_row_below_word{"eeprom-row-below-word", "eeprom_row_size", "1",
                                              "2 to 16777216"};
constexpr GeometryFault zero_eeprom_block{"zero-eeprom-block", "eeprom_block_size", "0",
                                          "1 to 4144"};
constexpr GeometryFault eeprom_block_below_word{"eeprom-block-below-word", "eeprom_block_size", "1",
                                                "2 to 4144"};
constexpr GeometryFault eeprom_block_above_eeprom{"eeprom-block-above-eeprom", "eeprom_block_size",
                                                  "4145", "1 to 4144"};
constexpr GeometryFault no_eeprom_words{"no-eeprom-words", "eeprom_word_size", "0",
                                        "1 to 16777216"};

/// "zero-flash-row" as a part of a test's name.
inline constexpr auto device_name = [](const auto& row) -> std::string {
    std::string name;
    for (const char* c = row.param.device; *c != '\0'; ++c) {
        name += *c == '-' ? '_' : *c;
    }
    return name;
};
