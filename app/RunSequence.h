#pragma once

/// One invocation of the tool from start to end: command line, port check, device, version,
/// operations, reset. Returns the exit status of a complete run, 0; every failure ends the process
/// with status 1 from within.
int run_sequence(int& argc, char** argv);
