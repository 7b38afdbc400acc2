#!/usr/bin/env bash
# Builds and runs the tests: optimised, then under AddressSanitizer and UndefinedBehaviorSanitizer.
# With arguments, only the presets named.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

install_packages "${build_packages[@]}" "${test_packages[@]}"
if [ $# -eq 0 ]; then
    set -- release sanitizers
fi
for preset in "$@"; do
    cmake --preset "$preset"
    cmake --build --preset "$preset"
    ctest --preset "$preset"
done
