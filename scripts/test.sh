#!/usr/bin/env bash
# Builds and runs all tests: optimised, then with AddressSanitizer and UndefinedBehaviorSanitizer, then
# every fuzz target for a few seconds. With arguments, only these presets.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

install_packages "${build_packages[@]}" "${test_packages[@]}" "${fuzz_packages[@]}"
if [ $# -eq 0 ]; then
    set -- release sanitizers fuzz
fi
for preset in "$@"; do
    cmake --preset "$preset"
    cmake --build --preset "$preset"
    ctest --preset "$preset" --schedule-random
done
