#!/usr/bin/env bash
# Runs the tests of whole programs with zserial and zserial-sim under valgrind's memcheck. What it finds
# is in build/valgrind/memcheck, a file for each process, and ends the run with an error. Takes about
# twenty minutes on two cores.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

findings=$PWD/build/valgrind/memcheck
# A pattern compiled at run time reads more than it is given and does not use it; nobody can look into
# such code, so patterns are interpreted.
run_under=(env QT_ENABLE_REGEXP_JIT=0 valgrind --quiet --error-exitcode=99 "--error-markers=FOUND,END"
    "--log-file=$findings/%p"
    # Programs end in the middle of a run when something fails. What they hold by a pointer into it,
    # as signal connections are held, is not lost.
    --leak-check=full --show-leak-kinds=definite --errors-for-leak-kinds=definite
    # To claim a port for oneself is a request that valgrind does not know.
    --sim-hints=lax-ioctls
    # A command of --exec that cannot be started leaves a copy of the simulator, which ends at once.
    --child-silent-after-fork=yes)
programs='^(tool_test|tool_load_test|sim_program_test)$'
measures_load='WithoutLoad$'

install_packages "${build_packages[@]}" "${test_packages[@]}" valgrind
rm -rf "$findings"
mkdir -p "$findings"
cmake --preset debug -B build/valgrind -DZSERIAL_RUN_UNDER="${run_under[*]}"
cmake --build build/valgrind --target tool_test tool_load_test sim_program_test
ctest --test-dir build/valgrind --label-regex "$programs" --exclude-regex "$measures_load" \
    --no-tests=error --output-on-failure -j "$(nproc)" --timeout 3600
# Whoever is ended by a signal has no status to tell it by.
if grep -rl '== FOUND' "$findings"; then
    echo "Valgrind has found something, see there." >&2
    exit 1
fi
echo "$(find "$findings" -type f | wc -l) processes without a finding."
