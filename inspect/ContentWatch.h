#pragma once

#include "app/Settings.h"
#include "inspect/Rehearsal.h"
#include "memory/MemoryMap.h"
#include "sim/device/DeviceMemory.h"

#include <vector>

namespace inspect
{

/// The image that a run writes; empty for none.
QString written_image(const Settings& settings);

/// Remembers what a device holds before a run, to find out what the run destroys of it.
class ContentWatch
{
public:
    /// The memory must outlive this.
    ContentWatch(const sim::DeviceMemory& memory, const Settings& settings);

    /// What is no longer there, although no image names it. Flash does not count where the user
    /// asks for all of it to be erased.
    LostContent lost() const;

private:
    bool is_named(unsigned int address) const;

    const sim::DeviceMemory& m_memory;
    const bool m_flash_is_given_up;
    const std::vector<sim::DeviceMemory::ProgrammedRange> m_held;
    MemoryMap m_image{MemoryMap::default_chunk_size};
};

} // namespace inspect
