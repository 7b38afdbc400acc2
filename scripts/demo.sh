#!/usr/bin/env bash
# Builds the programs and programs a sample image into a simulated device over a serial line.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

device=0110
image=blink.hex

install_packages "${build_packages[@]}"
cmake -S . -B build -DCMAKE_BUILD_TYPE=Release -G Ninja
cmake --build build

echo
echo "Checking the table and the image before anything is programmed:"
echo
echo "  zserial-inspect image $image --table device.txt --device $device"
echo
(cd examples && ../build/zserial-inspect table >/dev/null &&
    ../build/zserial-inspect image "$image" --table device.txt --device "$device")

# The simulator prints its port at the start and a summary when it is stopped.
exec 3< <(exec build/zserial-sim --table examples/device.txt --device "$device" \
    --check "examples/$image")
simulator=$!
trap 'kill "$simulator" 2>/dev/null || true' EXIT
read -r port <&3
echo
echo "A simulated device listens on $port. Programming examples/$image into it:"
echo
echo "  zserial -s $port -e -w $image -R"
echo
(cd examples && ../build/zserial -s "$port" -e -w "$image" -R)

kill -TERM "$simulator"
echo
echo "The simulated device's summary:"
cat <&3
wait "$simulator"
