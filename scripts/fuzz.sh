#!/usr/bin/env bash
# Searches with every fuzz target for SECONDS (300 unless given), two at a time; what is found is
# kept as a file in build/fuzz/fuzz and ends the run with an error. Give it to a target to replay it.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

seconds=${1:-300}
install_packages "${build_packages[@]}" "${fuzz_packages[@]}"
cmake --preset fuzz -DZSERIAL_FUZZ_SECONDS="$seconds"
cmake --build --preset fuzz
ctest --test-dir build/fuzz --output-on-failure -j 2 --timeout $((seconds + 60))
