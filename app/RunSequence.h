#pragma once

/// One invocation of the tool from start to end: command line, port check, device, version,
/// operations, reset. Returns the exit status: 0 for a complete run, 1 for every failure, whose
/// message is on the console. The port is closed by then, and also when an exception passes
/// through.
int run_sequence(int& argc, char** argv);
