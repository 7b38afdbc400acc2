#include "inspect/Subcommand.h"

namespace inspect
{

const std::vector<const Subcommand*>& subcommands()
{
    static const std::vector<const Subcommand*> all = {
        &table_command(), &image_command(), &plan_command(), &log_command(), &ports_command()};
    return all;
}

} // namespace inspect
