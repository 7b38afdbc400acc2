#!/usr/bin/env bash
# Programs the devices of many stations at once, over ssh, and creates one report.
#
#   stations.sh STATIONS IMAGE TABLE RESULTS [GANG-OPTION...] -- OPERATION [ZSERIAL-OPTION...]
#
# STATIONS is a file with one line per station: the host, then its ports. OPERATION is -w or -wv; the
# script inserts the image after it. RESULTS is the folder for the records, HOST.jsonl, and the report.
# Needs GNU parallel here and zserial-gang on every station. Set SSH to use another program than ssh.
#
# Exit status: 0 if all devices of all stations are ok, 1 otherwise, 2 for wrong arguments.
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

# Runs in a separate shell for each station: copies the files there, runs the gang and fetches the
# record, even if devices have failed. Then removes the folder on the station.
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
