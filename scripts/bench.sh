#!/usr/bin/env bash
# Measures the uploader's speed beside other programs and prints a line for every goal; about 20
# minutes on an idle machine. The figures go into docs/performance.md. With --short: less than a
# minute, fewer figures, no error for a goal that is not met, and the page stays as it is.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

install_packages "${build_packages[@]}" "${test_packages[@]}"
cmake --preset release
cmake --build --preset release
if [[ " $* " != *" --short "* ]]; then
    set -- --write docs/performance.md "$@"
fi
python3 bench/goals.py build/release "$@"
