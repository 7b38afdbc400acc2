#pragma once

/// Writes the usage text to the console.
void print_syntax();
