#pragma once

#include "inspect/MemoryBars.h"
#include "inspect/TextPage.h"

namespace inspect
{

/// The memory map in characters, each of which stands for the same number of bytes of its memory.
void print_map(TextPage& page, const MemoryPicture& picture, bool has_device);

} // namespace inspect
