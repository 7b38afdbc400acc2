#!/usr/bin/env bash
# Checks that the uploader in FOLDER (default: this tree) includes headers of the operating system in one
# source only, and there only under Q_OS_UNIX, and depends on the operating system nowhere else.
set -euo pipefail
cd "${1:-$(dirname "$0")/..}"

folders=(util profile memory device app)
platform=util/Platform.cpp
status=0

# Standard library and Qt headers have no ".h".
if grep -rnE '^[[:space:]]*#[[:space:]]*include <[^>]*\.h>' --include='*.cpp' --include='*.h' \
    "${folders[@]}" | grep -v "^$platform:"; then
    echo "Only $platform may include headers of the operating system." >&2
    status=1
fi
if grep -rnE '^[[:space:]]*#.*(Q_OS_|__linux__|__unix__|_WIN32|__APPLE__)' --include='*.cpp' \
    --include='*.h' "${folders[@]}" | grep -v "^$platform:"; then
    echo "Only $platform may depend on the operating system." >&2
    status=1
fi
if awk '/^#ifdef Q_OS_UNIX$/ { unix = 1 } /^#(else|endif)/ { unix = 0 }
    /^#include <.*\.h>/ && !unix { print; found = 1 } END { exit !found }' "$platform"; then
    echo "$platform must include these only under Q_OS_UNIX." >&2
    status=1
fi
exit $status
