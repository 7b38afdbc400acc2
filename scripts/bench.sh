#!/usr/bin/env bash
# Compares the speed of the uploader with other programs and prints a line for every goal; takes about
# 20 minutes on an idle machine. Writes the figures to docs/performance.md. With --short: takes less
# than a minute, measures less, accepts goals that are not met and leaves the page unchanged.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

install_packages "${build_packages[@]}" "${test_packages[@]}" "${benchmark_packages[@]}"
cmake --preset release -DZSERIAL_BUILD_BENCHMARKS=ON
cmake --build --preset release
if [[ " $* " != *" --short "* ]]; then
    set -- --write docs/performance.md "$@"
fi
python3 bench/goals.py build/release "$@"
