#!/usr/bin/env bash
# Checks what scripts/test.sh does not: style, the build with clang and its fuzz targets for a few
# seconds each, documents, benchmarks, packages, manual pages, completions, programs that are built on
# the installed libraries, and whether the tests reach every line.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

scripts/lint.sh
install_packages "${build_packages[@]}" "${test_packages[@]}" "${benchmark_packages[@]}" "${check_packages[@]}"
scripts/test.sh fuzz
cmake --preset release -DZSERIAL_BUILD_BENCHMARKS=ON
cmake --build --preset release
ctest --test-dir build/release --label-regex '^check$' --no-tests=error --output-on-failure \
    --parallel "$(nproc)"
scripts/coverage.sh
