#!/usr/bin/env bash
# Measures the uploader's speed against other programs and prints a line for every goal; takes about
# 20 minutes on an idle machine. The figures are written to docs/performance.md. With --short: less
# than a minute, fewer figures, no error for a goal that is not met, and the page is not changed.
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
