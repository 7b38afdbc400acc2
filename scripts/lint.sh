#!/usr/bin/env bash
# Checks the format of all sources and runs clang-tidy over them.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

install_packages "${build_packages[@]}" "${test_packages[@]}" "${lint_packages[@]}" git
git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run -Werror
cmake --preset debug
cmake --build --preset debug
git ls-files '*.cpp' | xargs -P "$(nproc)" -n 4 clang-tidy --quiet -p build/debug
