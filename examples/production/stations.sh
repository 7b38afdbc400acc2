#!/usr/bin/env bash
# Programs the devices of many stations at once, over ssh, and makes one report.
#
#   stations.sh STATIONS IMAGE TABLE RESULTS [GANG-OPTION...] -- OPERATION [ZSERIAL-OPTION...]
#
# STATIONS is a file with a line for each station: the host, then its ports. OPERATION is -w or -wv;
# the image goes after it. RESULTS is a folder that gets the records, STATION.jsonl, and the report.
# Needs GNU parallel here, and zserial-gang on every station. SSH names another program than ssh.
#
# Ends with 0 when all devices of all stations are ok, and with 1 otherwise.
set -euo pipefail

usage() {
    sed -n '2,/^$/s/^# \{0,1\}//p' "$0" >&2
    exit 2
}

[ $# -ge 6 ] || usage
stations=$1 image=$2 table=$3 results=$4
shift 4
options=()
while [ $# -gt 0 ] && [ "$1" != -- ]; do
    options+=("$1")
    shift
done
[ $# -ge 2 ] || usage
operation=$2
shift 2
[ -s "$image" ] || { echo "no image: $image" >&2; exit 2; }
[ -s "$table" ] || { echo "no table: $table" >&2; exit 2; }
mkdir -p "$results"

# Runs in a shell of its own for each station: pushes the files, runs the gang, fetches the record.
# The record comes back whatever became of the devices; then the folder on the station goes.
# shellcheck disable=SC2317  # called by name
program_station() {
    local words host ports remote status=0
    read -ra words <<<"$1"
    host=${words[0]}
    ports=("${words[@]:1}")
    remote=$("$SSH" "$host" 'mktemp -d') || return 1
    tar -cf - -C "$FILES" firmware.hex device.txt |
        "$SSH" "$host" "tar -xf - -C $remote" || return 1
    "$SSH" "$host" "cd $remote && : >record.jsonl && zserial-gang --record record.jsonl --station $host \
        $OPTIONS ${ports[*]@Q} -- $OPERATION firmware.hex $ARGUMENTS" || status=1
    "$SSH" "$host" "cat $remote/record.jsonl" >>"$RESULTS/$host.jsonl" || return 1
    "$SSH" "$host" "rm -r $remote" || status=1
    return "$status"
}
export -f program_station

files=$(mktemp -d)
trap 'rm -r "$files"' EXIT
cp "$image" "$files/firmware.hex"
cp "$table" "$files/device.txt"
export SSH=${SSH:-ssh} FILES=$files RESULTS=$results
export OPERATION=$operation OPTIONS="${options[*]@Q}" ARGUMENTS="${*@Q}"

status=0
grep -v -e '^ *#' -e '^ *$' "$stations" |
    parallel --jobs 0 --line-buffer --tagstring '{= s/ .*// =}' program_station || status=1
zserial-gang report --html "$results"/*.jsonl >"$results/report.html"
zserial-gang report "$results"/*.jsonl
exit "$status"
