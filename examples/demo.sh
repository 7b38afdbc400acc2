#!/usr/bin/env bash
# Checks a sample table and image and programs the image into a simulated device. The programs must be
# on the PATH. Changes no files in this folder.
set -euo pipefail
cd "$(dirname "$0")"

device=0110
image=blink.hex

# A copy, because zserial opens images for writing, too.
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cp device.txt "$image" "$folder"
cd "$folder"

echo "Checking the table and the image before anything is programmed:"
echo
echo "  zserial-inspect image $image --table device.txt --device $device"
echo
zserial-inspect table >/dev/null
zserial-inspect image "$image" --table device.txt --device "$device"

# The simulator prints its port when it starts and a summary when it is stopped.
exec 3< <(exec zserial-sim --device "$device" --check "$image")
simulator=$!
trap 'kill "$simulator" 2>/dev/null || true; rm -rf "$folder"' EXIT
read -r port <&3
echo
echo "A simulated device listens on $port. Programming $image into it:"
echo
echo "  zserial -s $port -e -w $image -R"
echo
zserial -s "$port" -e -w "$image" -R

kill -TERM "$simulator"
echo
echo "The simulated device's summary:"
cat <&3
wait "$simulator"
