#!/usr/bin/env bash
# Runs the tests of whole programs with zserial and zserial-sim under valgrind's memcheck. Findings are
# saved in build/valgrind/memcheck, one file per process, and make the script fail. Takes about twenty
# minutes on two cores.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

findings=$PWD/build/valgrind/memcheck
# Regular expressions compiled at run time read past their input without using what they read. Valgrind
# would report that, so they are interpreted instead.
run_under=(env QT_ENABLE_REGEXP_JIT=0 valgrind --quiet --error-exitcode=99 "--error-markers=FOUND,END"
    "--log-file=$findings/%p"
    # On a failure, programs exit in the middle of a run. Memory that is then reachable only through
    # interior pointers, such as signal connections, is not a leak.
    --leak-check=full --show-leak-kinds=definite --errors-for-leak-kinds=definite
    # Valgrind does not know the ioctl that locks a port (TIOCEXCL).
    --sim-hints=lax-ioctls
    # If the command of --exec cannot be started, the forked simulator exits at once.
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
# A process that is killed by a signal cannot report errors in its status.
if grep -rl '== FOUND' "$findings"; then
    echo "Valgrind found errors; the files above list them." >&2
    exit 1
fi
echo "$(find "$findings" -type f | wc -l) processes without findings."
