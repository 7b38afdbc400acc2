#!/usr/bin/env bash
# Checks the format of all sources and runs clang-tidy and shellcheck on them. With arguments, checks only
# these files and folders. Once a file has passed clang-tidy, it is not checked again until the file, any
# header or the settings change.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

export passed=build/lint/passed
export settings

# Prints the files of the tree that match a pattern, within the given files and folders.
sources() {
    git ls-files -z --cached --others --exclude-standard -- "${@:2}" | { grep -zE "$1" || true; }
}

tidy() {
    local findings mark
    mark=$passed/$(cat "$1" - <<<"$settings" | sha256sum | cut -d ' ' -f 1)
    if [ ! -e "$mark" ]; then
        findings=$(clang-tidy --quiet -p build/lint "$1" 2>&1) || {
            echo "$findings"
            return 1
        }
        touch "$mark"
    fi
}
export -f tidy

install_packages "${build_packages[@]}" "${test_packages[@]}" "${lint_packages[@]}" git
sources '\.(cpp|h|c)$' "${@:-.}" | xargs -0r clang-format --dry-run -Werror
sources '\.(ba)?sh$|^\.ci/run$' "${@:-.}" | xargs -0r shellcheck
cmake --preset lint
mkdir -p "$passed"
settings=$(sources '\.h$|CMakeLists\.txt$|\.cmake$|\.clang-tidy$' . | xargs -0 cat | sha256sum)
sources '\.(cpp|c)$' "${@:-.}" | xargs -0r -n 1 -P "$(nproc)" bash -c 'tidy "$1"' -
