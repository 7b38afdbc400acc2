#pragma once

namespace sim
{

/// The output rate, in baud, that the host has set on its end of a pseudo-terminal, asked through
/// the descriptor of the other end; also for rates outside the list of standard ones. 0 on failure.
unsigned int line_rate(int master_descriptor);

} // namespace sim
