#pragma once

namespace gang
{

/// The whole program; returns its exit status.
int run_program(int argc, char** argv);

} // namespace gang
