#!/usr/bin/env bash
# Runs every fuzz target for SECONDS (default: 300), two at a time. A finding is saved as a file in
# build/fuzz/fuzz and makes the script fail. To replay it, pass the file to its target.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

seconds=${1:-300}
install_packages "${build_packages[@]}" "${clang_packages[@]}"
cmake --preset fuzz -DZSERIAL_FUZZ_SECONDS="$seconds"
cmake --build --preset fuzz
ctest --test-dir build/fuzz --output-on-failure -j 2 --timeout $((seconds + 60))
