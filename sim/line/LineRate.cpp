// On its own because the kernel's terminal structures, which alone report custom rates, clash with
// those of <termios.h>.
#include "sim/line/LineRate.h"

#include <asm/termbits.h>
#include <sys/ioctl.h>

namespace sim
{

unsigned int line_rate(int master_descriptor)
{
    termios2 settings{};
    return ::ioctl(master_descriptor, TCGETS2, &settings) == 0 ? settings.c_ospeed : 0;
}

} // namespace sim
