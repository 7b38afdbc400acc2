#!/usr/bin/env bash
# Gives damaged and unusual Intel HEX files to zserial and to other tools, and prints as a table
# what each makes of them.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

install_packages "${build_packages[@]}" binutils llvm srecord python3 python3-intelhex
cmake -S . -B build -DCMAKE_BUILD_TYPE=Release -G Ninja >&2
cmake --build build >&2
/usr/bin/python3 scripts/hex_comparison.py build
