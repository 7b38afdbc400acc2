#!/usr/bin/env bash
# Measures how zserial behaves on bad lines, with simulated devices, and prints the tables of
# docs/reliability.md; --write docs/reliability.md updates the page. Passes its options to
# reliability.py; --help lists them.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

install_packages "${build_packages[@]}" "${test_packages[@]}"
cmake --preset release
cmake --build --preset release --target zserial zserial-sim zserial-gang
exec python3 scripts/reliability.py "$@"
