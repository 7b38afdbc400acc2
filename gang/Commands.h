#pragma once

#include "gang/Arguments.h"
#include "gang/ToolCommand.h"

#include <vector>

namespace gang
{

/// The tool's arguments for every port, or for two ports that might appear. Throws ArgumentError
/// for what no run could begin with: ports named twice, arguments that the tool refuses, or a file
/// that two of them would write, or that one would write and others need.
std::vector<ToolCommand> commands_of(const Arguments& arguments);

} // namespace gang
