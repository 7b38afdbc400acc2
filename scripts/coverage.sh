#!/usr/bin/env bash
# Runs all tests with counters and reports how many lines of the uploader, the inspector and the gang
# runner they reach. Fails below 98 percent, for a line that no test reaches unless
# scripts/coverage_gaps.txt gives a reason, and for a reason that is no longer needed.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

install_packages "${build_packages[@]}" "${test_packages[@]}" "${coverage_packages[@]}"
cmake --preset coverage
cmake --build --preset coverage
find build/coverage -name '*.gcda' -delete
# A program whose files must not grow damages the counters of its sources.
ctest --preset coverage --schedule-random --exclude-regex 'MustNotGrow|SizeLimit'
folders=(app/ device/ gang/ inspect/ memory/ process/ profile/ util/)
gcovr --root . --object-directory build/coverage -j "$(nproc)" "${folders[@]/#/--filter=}" \
    --json build/coverage/lines.json build/coverage
scripts/coverage_gaps.py build/coverage/lines.json scripts/coverage_gaps.txt
