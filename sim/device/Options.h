#pragma once

namespace sim
{

/// How the device comes up when it is powered on, and again after a reset.
enum class Entry {
    Probe,   ///< starts and waits for a probe before it runs
    Version, ///< runs already, answers the version command and never a probe
    Silent,  ///< hears everything, does nothing and never answers
};

/// A half-duplex line brings every byte that the host sends back to the host.
enum class Echo {
    None,
    Apart,    ///< can be read before the answer, unless times bring both together
    Together, ///< comes with the answer
};

/// What a simulated device and its line are like.
struct Options {
    using Echo = sim::Echo;

    Entry entry = Entry::Probe;
    Echo echo = Echo::None;
    /// Bytes take the time that they would take on a wire at the rate in force, both ways.
    bool paced = false;
    int latency_ms = 0;    ///< of the host's adapter, for short packets; 0 for none
    int erase_page_ms = 0; ///< what the device needs to erase a page
    int write_row_ms = 0;  ///< and to write a row
    /// Keeps every command and byte for later inspection. A device that runs for long should only
    /// count them.
    bool keeps_record = true;
};

} // namespace sim
