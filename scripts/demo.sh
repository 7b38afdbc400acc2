#!/usr/bin/env bash
# Builds zserial and programs a sample image into a simulated device over a serial line.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

install_packages "${build_packages[@]}"
cmake -S . -B build -DCMAKE_BUILD_TYPE=Release -G Ninja
cmake --build build

echo
PATH=$PWD/build:$PATH examples/demo.sh
