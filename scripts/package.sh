#!/usr/bin/env bash
# Creates the source archive and, from it, the Debian packages, in FOLDER (default: build/package).
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

folder=$(realpath -m "${1:-build/package}")
install_packages "${build_packages[@]}" dpkg-dev
rm -rf "$folder"
mkdir -p "$folder"
cmake -S . -B "$folder/archive" -G Ninja
cpack --config "$folder/archive/CPackSourceConfig.cmake" -B "$folder"
tar -C "$folder" -xf "$folder"/zserial-*.tar.gz

# Builds with the flags of Debian's own packages, but without debug information.
eval "$(DEB_BUILD_MAINT_OPTIONS=hardening=+all DEB_CXXFLAGS_MAINT_STRIP=-g \
    dpkg-buildflags --export=sh)"
cmake -S "$folder"/zserial-*/ -B "$folder/obj" -G Ninja \
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr \
    -DZSERIAL_ZSH_COMPLETIONS_DIR=share/zsh/vendor-completions
cmake --build "$folder/obj"
cpack --config "$folder/obj/CPackConfig.cmake" -B "$folder"
ls -l "$folder"/*.deb "$folder"/*.tar.gz
