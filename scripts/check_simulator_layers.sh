#!/usr/bin/env bash
# Checks that each folder of the simulator includes only headers from lower layers and from the shared
# libraries.
set -euo pipefail
cd "$(dirname "$0")/.."

layers=(line device faults rig program)
status=0

# Reports includes in a folder that do not match "allowed", an extended regular expression.
refuse_all_but() {
    local folder=$1 allowed=$2
    if grep -rnE '^#include "' "$folder" | grep -vE "#include \"($allowed)/"; then
        echo "$folder must not include the headers above." >&2
        status=1
    fi
}

allowed='util|process|profile|memory'
for layer in "${layers[@]}"; do
    [ -d "sim/$layer" ]
    allowed+="|sim/$layer"
    refuse_all_but "sim/$layer" "$allowed"
done

# Files outside of these folders would escape the check.
if find sim -name '*.cpp' -o -name '*.h' | grep -vE "^sim/($(IFS='|' && echo "${layers[*]}"))/[^/]+$"; then
    echo "The files above belong in one of the simulator's folders." >&2
    status=1
fi
exit $status
