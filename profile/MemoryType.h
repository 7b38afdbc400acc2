#pragma once

/// The kind of memory that a byte address of the image belongs to.
enum MemoryType {
    MEMORY_FLASH = 0,  ///< user flash: from the end of the bootloader area to the end of flash
    MEMORY_EEPROM = 1, ///< the EEPROM area
    MEMORY_OTHER = 2,  ///< everything else, the bootloader area included
};
