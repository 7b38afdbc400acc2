#include "inspect/Subcommand.h"

namespace inspect
{

const std::vector<const Subcommand*>& subcommands()
{
    static const std::vector<const Subcommand*> all = {&table_command(), &image_command(),
#ifdef ZSERIAL_HAS_SIMULATOR
                                                       &plan_command(),
#endif
                                                       &log_command(), &ports_command()};
    return all;
}

} // namespace inspect
