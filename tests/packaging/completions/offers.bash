#!/usr/bin/env bash
# Prints the completions that bash offers at the end of LINE: offers.bash FOLDER LINE
# shellcheck disable=SC2034  # the completion uses these
complete() { function=$2; }
compopt() { :; }
# shellcheck source=packaging/completions/zserial.bash
. "$1/zserial.bash"
_zserial_dev=dev
read -ra COMP_WORDS <<<"$2"
if [[ $2 == *' ' ]]; then
    COMP_WORDS+=('')
fi
COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
"$function"
((${#COMPREPLY[@]} == 0)) || printf '%s\n' "${COMPREPLY[@]}"
