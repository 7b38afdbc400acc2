#pragma once

#include "gang/Arguments.h"
#include "gang/ToolCommand.h"

#include <vector>

namespace gang
{

/// Returns the zserial command for each port or, with --watch, for up to two sample ports that
/// match the pattern. Throws ArgumentError if no run could succeed: a port is named twice, zserial
/// would refuse the arguments, options contradict each other, two ports would write the same file,
/// or a port would overwrite a file that others need.
std::vector<ToolCommand> commands_of(const Arguments& arguments);

} // namespace gang
