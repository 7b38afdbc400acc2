#!/usr/bin/env bash
# A complete job for continuous integration: checks a table and an image, programs the image into a
# simulated device over a good line and over a bad one, and proves that it detects a failure.
#
#     job.sh TABLE VERSION IMAGE RESULTS
#
# RESULTS is a new folder for logs and summaries, the artifacts of the job. The programs must be on the
# PATH. Exit status: 0 on success, or that of the first step that failed: 10 the table or the image,
# 11 the upload, 12 the contents of the device, 13 the set-up of the job.
set -uo pipefail

fail() {
    echo "FAILED: $2" >&2
    exit "$1"
}

[ $# -eq 4 ] || fail 13 "usage: job.sh TABLE VERSION IMAGE RESULTS"
mkdir -p "$4" || fail 13 "cannot make $4"
results=$(realpath "$4")
version=$2

# zserial reads device.txt from its working folder, so it runs in the folder of the results.
cp "$1" "$results/device.txt" || fail 13 "no table"
cp "$3" "$results/image.hex" || fail 13 "no image"
cd "$results" || fail 13 "cannot use $results"

echo "== Table and image"
zserial-inspect table --json >table.json
[ $? -le 1 ] || fail 13 "zserial-inspect cannot look at the table"
zserial-inspect image image.hex --device "$version" >image.txt
status=$?
cat image.txt
[ $status -eq 0 ] || fail 10 "the image, or its fit into the device: see above"

# run NAME [OPTION OF THE SIMULATOR...] -- ARGUMENT OF ZSERIAL...
run() {
    local name=$1 simulator=()
    shift
    while [ "$1" != -- ]; do
        simulator+=("$1")
        shift
    done
    shift
    zserial-sim --device "$version" --json --summary "$name.json" "${simulator[@]}" \
        --exec -- zserial -s {} -x "$name.frames" "$@" >"$name.out" 2>"$name.err"
    local status=$?
    echo "$name: status $status"
    return $status
}

# judge NAME: ends the job if the status of the last run, in $?, is a failure
judge() {
    case $? in
    0) return 0 ;;
    1) fail 12 "$1: the upload succeeded, and the device does not hold the image: $1.json" ;;
    3) fail 11 "$1: the upload failed: $1.out, $1.err" ;;
    *) fail 13 "$1: the simulator could not run: $1.err" ;;
    esac
}

echo "== A good line"
run good --check image.hex -- -e -w image.hex -v image.hex -R
judge good

echo "== A line that loses one answer in twenty, always the same ones"
run lossy --check image.hex --fault lose-response=0.05 --seed 7 -- -wv image.hex
judge lossy

echo "== The recorded answers again, without the image in the device"
run replayed --replay good.frames -- -e -w image.hex -v image.hex
judge replayed

echo "== A device that fails must fail the job"
run broken --fault wrong-ack@5 -- -e -w image.hex
[ $? -eq 3 ] || fail 13 "a bad acknowledgement went unnoticed"

echo "== So must one that acknowledges rows and does not write them"
run unwritten --check image.hex --fault phantom-write=1 -- -e -w image.hex
[ $? -eq 1 ] || fail 13 "a device without the image went unnoticed"

echo "All is well."
