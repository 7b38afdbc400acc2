# shellcheck shell=bash disable=SC2034  # the scripts that source this use the lists
# Sourced by the other scripts: installs missing Debian packages, as root or with sudo. Does nothing if
# all of them are installed.

install_packages() {
    local missing=() package
    for package in "$@"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q '^install ok installed$' ||
            missing+=("$package")
    done
    if [ ${#missing[@]} -eq 0 ]; then
        return
    fi
    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        as_root=(sudo)
    fi
    echo "Installing ${missing[*]}"
    "${as_root[@]}" apt-get update -q
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -q -y --no-install-recommends "${missing[@]}"
}

build_packages=(g++ cmake ninja-build qtbase5-dev libqt5serialport5-dev libssl-dev zlib1g-dev)
test_packages=(git libgtest-dev libgmock-dev python3 python3-jsonschema binutils srecord librsvg2-bin tmux
    parallel)
clang_packages=(clang libclang-rt-14-dev)
benchmark_packages=(libbenchmark-dev)
lint_packages=(clang-format clang-tidy shellcheck)
check_packages=(bash debootstrap dpkg-dev fish lintian mandoc zsh)
coverage_packages=(gcovr)
