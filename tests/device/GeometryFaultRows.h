#pragma once

#include "tests/device/OperationImages.h"
#include "tests/support/Bytes.h"
#include "tests/support/SignalRecorder.h"

#include <string>

namespace test
{

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

constexpr const char* any_row = "1 to 1073741568";
constexpr const char* any_number = "1 to 4294967295";

constexpr GeometryFault zero_flash_row{"zero-flash-row", "flash_row_size", "0", any_row};
constexpr GeometryFault zero_flash_block{"zero-flash-block", "flash_block_size", "0", any_number};
constexpr GeometryFault zero_flash_page{"zero-flash-page", "flash_page_size", "0", any_number};
constexpr GeometryFault no_flash_words{"no-flash-words", "flash_word_size", "0", any_number};
constexpr GeometryFault flash_divisor_zero{"flash-divisor-zero", "flash_words_per_address", "4",
                                           "1 to 2"};
constexpr GeometryFault zero_eeprom_row{"zero-eeprom-row", "eeprom_row_size", "0", any_row};
constexpr GeometryFault zero_eeprom_block{"zero-eeprom-block", "eeprom_block_size", "0",
                                          any_number};
constexpr GeometryFault no_eeprom_words{"no-eeprom-words", "eeprom_word_size", "0", any_number};

/// "zero-flash-row" as a part of a test's name.
inline constexpr auto device_name = [](const auto& row) -> std::string {
    std::string name;
    for (const char* c = row.param.device; *c != '\0'; ++c) {
        name += *c == '-' ? '_' : *c;
    }
    return name;
};

} // namespace test
