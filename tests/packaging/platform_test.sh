#!/usr/bin/env bash
# Tests that check_platform.sh passes for this tree and finds each kind of violation in a copy.
set -euo pipefail
cd "$(dirname "$0")/../.."

scripts/check_platform.sh

copy=$(mktemp -d)
trap 'rm -rf "$copy"' EXIT

# Adds a line at the top of a file in a fresh copy, which the check must then refuse.
refuses() {
    local file=$1 line=$2
    rm -rf "${copy:?}"/*
    cp -r util profile memory device app "$copy"
    sed -i "1i $line" "$copy/$file"
    if scripts/check_platform.sh "$copy" >/dev/null 2>&1; then
        echo "'$line' in $file is not found." >&2
        exit 1
    fi
}

refuses device/Rows.cpp '#include <unistd.h>'
refuses app/Console.h '#  include <sys/stat.h>'
refuses profile/Profile.cpp '#ifdef Q_OS_UNIX'
refuses memory/MemoryMap.cpp '#if defined(__linux__)'
refuses util/Platform.cpp '#include <unistd.h>'
