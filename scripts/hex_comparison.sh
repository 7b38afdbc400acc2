#!/usr/bin/env bash
# Loads damaged and unusual Intel HEX files with zserial and with other tools, and prints the results as
# a table.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

install_packages "${build_packages[@]}" binutils llvm srecord python3 python3-intelhex
cmake -S . -B build -DCMAKE_BUILD_TYPE=Release -G Ninja >&2
cmake --build build >&2
/usr/bin/python3 scripts/hex_comparison.py build
