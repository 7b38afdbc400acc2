#!/usr/bin/env bash
# Builds and runs the tests: optimised, then under AddressSanitizer and UndefinedBehaviorSanitizer.
# With arguments, only the presets named.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

install_packages "${build_packages[@]}" "${test_packages[@]}" "${clang_packages[@]}"
if [ $# -eq 0 ]; then
    set -- release sanitizers
fi

build() {
    cmake --preset "$1"
    cmake --build --preset "$1"
}

# Tests spend most of their time waiting for devices. Meanwhile the next preset is built, at the lowest
# priority, so that no test waits for a compiler.
next_build=
start_build() {
    mkdir -p build
    set -m # a process group of its own, with which it ends if this script is interrupted
    (
        renice -n 19 -p "$BASHPID" >/dev/null
        build "$1"
    ) >"build/$1.log" 2>&1 &
    set +m
    next_build=$!
}
trap '[ -z "$next_build" ] || kill -- "-$next_build" 2>/dev/null' EXIT

finish_build() {
    echo "Waiting for the build of the preset $1"
    if ! wait "$next_build"; then
        cat "build/$1.log"
        exit 1
    fi
    next_build=
}

status=0
build "$1"
while [ $# -ne 0 ]; do
    if [ $# -gt 1 ]; then
        start_build "$2"
    fi
    ctest --preset "$1" || status=$?
    shift
    if [ $# -ne 0 ]; then
        finish_build "$1"
    fi
done
exit "$status"
