#pragma once

namespace gang
{

/// Runs zserial-gang and returns its exit status.
int run_program(int argc, char** argv);

} // namespace gang
