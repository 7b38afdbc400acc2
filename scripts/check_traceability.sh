#!/usr/bin/env bash
# Checks that every test named in docs/traceability.md exists, and that every "—", which marks behaviour
# without a test, is followed by the reason.
set -euo pipefail
cd "$(dirname "$0")/.."

# Only tables name tests. The name of a suite stands for all of its tests.
rows=$(grep '^| ' docs/traceability.md)
names=$(grep -oE '`[A-Z][A-Za-z0-9]*\.[A-Za-z][A-Za-z0-9_]*`' <<<"$rows" | sed 's/`//g')
suites=$(grep -oE 'the suites? `[A-Za-z0-9]+`(, `[A-Za-z0-9]+`)*' <<<"$rows" |
    grep -oE '`[A-Za-z0-9]+`' | sed 's/`//g')

if grep -E '\|[[:space:]]*(—[[:space:]]*)?\|$' <<<"$rows"; then
    echo "docs/traceability.md gives neither a test nor a reason here." >&2
    exit 1
fi

# Joined into one line, because a long name may be on a line of its own.
tests=$(find tests -name '*.cpp' -exec cat {} + | tr '\n' ' ' |
    grep -oE '\bTEST(_F|_P)?\( *[A-Za-z0-9_]+, *[A-Za-z0-9_]+ *\)' |
    sed -E 's/^[A-Z_]+\( *//; s/, */./; s/ *\)$//')

# Scripts that are tests.
while read -r name; do
    if ! grep -qE "^zserial_packaging_(test|check)\($name " tests/packaging/CMakeLists.txt; then
        echo "docs/traceability.md names packaging.$name, which does not exist." >&2
        exit 1
    fi
done < <(grep -oE '`packaging\.[a-z_.]+`' <<<"$rows" | sed -E 's/`//g; s/^packaging\.//')

if grep -vxF -f <(sed 'p; s/\..*//' <<<"$tests") <<<"$names"$'\n'"$suites"; then
    echo "docs/traceability.md names these, which do not exist." >&2
    exit 1
fi
