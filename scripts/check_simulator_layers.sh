#!/usr/bin/env bash
# Checks that each folder of the simulator includes only what lies below it, and nothing of the tool.
set -euo pipefail
cd "$(dirname "$0")/.."

floors=(line device faults rig program)
status=0

# Prints the includes of a folder that lead to anything but what is allowed, an extended expression.
refuse_all_but() {
    local folder=$1 allowed=$2
    if grep -rnE '^#include "' "$folder" | grep -vE "#include \"($allowed)/"; then
        echo "$folder must not include these." >&2
        status=1
    fi
}

allowed='util|profile|memory'
for floor in "${floors[@]}"; do
    [ -d "sim/$floor" ]
    allowed+="|sim/$floor"
    refuse_all_but "sim/$floor" "$allowed"
done

# Nothing lies beside the folders, where it would be checked by nobody.
if find sim -name '*.cpp' -o -name '*.h' | grep -vE "^sim/($(IFS='|' && echo "${floors[*]}"))/[^/]+$"; then
    echo "These belong into one of the simulator's folders." >&2
    status=1
fi
exit $status
