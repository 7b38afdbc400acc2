# bash completion for zserial, zserial-sim, zserial-inspect and zserial-gang. The options of zserial
# stand here; the others are asked for theirs with --help.

# Another folder than /dev is for tests.
_zserial_ports()
{
    local folder=${_zserial_dev:-/dev}
    compgen -W "$(compgen -G "$folder/ttyUSB*"; compgen -G "$folder/ttyACM*"
        compgen -G "$folder/serial/by-id/*")" -- "$1"
}

# Versions in the table that --table names before the cursor, or in ./device.txt.
_zserial_versions()
{
    local table=device.txt i
    for ((i = 1; i < COMP_CWORD - 1; i++)); do
        if [[ ${COMP_WORDS[i]} == --table ]]; then
            table=${COMP_WORDS[i + 1]}
        fi
    done
    local digit='[0-9A-Fa-f]'
    compgen -W "$(awk -F '\t+' -v first="^v$digit$digit$digit$digit:\$" \
        '{ sub(/[\t\r]+$/, "") } NF == 25 && $1 ~ first { print substr($1, 2, 4) }' \
        "$table" 2>/dev/null)" -- "$1"
}

# HEX files and folders; all files where there is neither.
_zserial_images()
{
    { compgen -f -X '!*.[hH][eE][xX]' -- "$1"; compgen -d -- "$1"; } | grep . || compgen -f -- "$1"
}

_zserial_files()
{
    compgen -f -- "$1"
}

# "--name value" for each option in the help of a program or of its subcommand.
_zserial_help()
{
    "$@" --help 2>/dev/null | sed -nE 's/^  (--[a-z][a-z-]*)( <([a-z]+)>)?( .*|$)/\1 \3/p'
}

# The words that may follow the option $1 of a companion as its value, for the word $2.
_zserial_value()
{
    case $1 in
        --device | --expect | --explain) _zserial_versions "$2" ;;
        --memory | --save | --check | --before) _zserial_images "$2" ;;
        --entry) compgen -W 'probe version silent' -- "$2" ;;
        --echo) compgen -W 'apart together' -- "$2" ;;
        --serial-format) compgen -W 'little big text' -- "$2" ;;
        --fault)
            compgen -W "$("${COMP_WORDS[0]}" --help 2>/dev/null | sed -nE \
                '/^Options:/q; s/^  ([a-z-]+:)[A-Z:]+ .*/\1/p; s/^  ([a-z-]+) .*/\1=/p')" -- "$2"
            ;;
        --zserial) compgen -c -- "$2" ;;
        --watch | --jobs | --tries | --pause | --limit | --station | --serial-at | --serial-size) ;;
        --seed | --latency-ms | --erase-ms | --write-ms) ;;
        *) _zserial_files "$2" ;;
    esac
}

# What zserial itself takes at the cursor, when its own words begin at $1.
_zserial_tool()
{
    local i=$(($1 + 1)) current=${COMP_WORDS[COMP_CWORD]} option count
    while ((i < COMP_CWORD)); do
        option=${COMP_WORDS[i]}
        case $option in
            -W | -l) count=3 ;;
            -E) count=2 ;;
            -s | -B | -M | -w | -wv | -r | -v | -x) count=1 ;;
            *) count=0 ;;
        esac
        if ((COMP_CWORD <= i + count)); then
            case $option:$((COMP_CWORD - i)) in
                -s:1) _zserial_ports "$current" ;;
                -B:1) _zserial_versions "$current" ;;
                -w:1 | -wv:1 | -r:1 | -v:1 | -W:3 | -l:3) _zserial_images "$current" ;;
                -x:1) _zserial_files "$current" ;;
            esac
            return
        fi
        i=$((i + count + 1))
    done
    compgen -W '-s -b -B -V -M -h -e -E -w -W -wv -r -l -v -R -xe -xu -x' -- "$current"
}

# A companion up to the cursor: $1 are the words that follow where no option is meant, the rest is the
# command whose help has the options. Between two of them the shell may split at "=".
_zserial_companion()
{
    local words=$1 current=${COMP_WORDS[COMP_CWORD]} last=${COMP_WORDS[COMP_CWORD - 1]} options
    shift
    options=$(_zserial_help "$@")
    if [[ $current == = ]]; then
        current=
    elif [[ $last == = ]]; then
        last=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    if [[ $current == -* ]]; then
        compgen -W "$(cut -d ' ' -f 1 <<<"$options")" -- "$current"
    elif [[ $'\n'$options == *$'\n'"$last "[a-z]* ]]; then
        _zserial_value "$last" "$current"
    else
        $words "$current"
    fi
}

_zserial_nothing()
{
    :
}

# zserial-inspect before any separator.
_zserial_inspect()
{
    local program=$1 subcommand=${COMP_WORDS[1]} current=${COMP_WORDS[COMP_CWORD]}
    if ((COMP_CWORD == 1)); then
        compgen -W "$("$program" --help 2>/dev/null | sed -nE 's/^  (--)?([a-z]+) .*/\1\2/p')" \
            -- "$current"
    elif [[ $subcommand == image ]]; then
        _zserial_companion _zserial_images "$program" "$subcommand"
    else
        _zserial_companion _zserial_files "$program" "$subcommand"
    fi
}

# zserial-gang before the separator.
_zserial_gang()
{
    local program=$1 current=${COMP_WORDS[COMP_CWORD]}
    if ((COMP_CWORD > 1)) && [[ ${COMP_WORDS[1]} == report ]]; then
        _zserial_companion _zserial_files "$program" report
    else
        _zserial_companion _zserial_ports "$program"
        ((COMP_CWORD > 1)) || compgen -W report -- "$current"
    fi
}

# After "--" at $1, zserial-sim takes any command, the others take arguments of zserial.
_zserial_after_separator()
{
    local at=$1 program=$2 current=${COMP_WORDS[COMP_CWORD]}
    if [[ ${program##*/} != zserial-sim ]]; then
        _zserial_tool "$at"
    elif ((COMP_CWORD == at + 1)); then
        compgen -c -- "$current"
    elif [[ ${COMP_WORDS[at + 1]##*/} == zserial ]]; then
        _zserial_tool $((at + 1))
    else
        _zserial_files "$current"
    fi
}

_zserial_candidates()
{
    local program=${COMP_WORDS[0]} i
    if [[ ${program##*/} == zserial ]]; then
        _zserial_tool 0
        return
    fi
    for ((i = 1; i < COMP_CWORD; i++)); do
        if [[ ${COMP_WORDS[i]} == -- ]]; then
            _zserial_after_separator "$i" "$program"
            return
        fi
    done
    case ${program##*/} in
        zserial-sim) _zserial_companion _zserial_nothing "$program" ;;
        zserial-inspect) _zserial_inspect "$program" ;;
        zserial-gang) _zserial_gang "$program" ;;
    esac
}

_zserial()
{
    local reply
    mapfile -t COMPREPLY < <(_zserial_candidates)
    for reply in "${COMPREPLY[@]}"; do
        if [[ -e $reply ]]; then
            compopt -o filenames
        elif [[ $reply == *[=:] ]]; then
            compopt -o nospace
        fi
    done
}

complete -F _zserial zserial zserial-sim zserial-inspect zserial-gang
