#!/usr/bin/env bash
# Installs the packages of FOLDER in a fresh Debian system, uses them, removes them and checks that nothing
# is left. Needs root or sudo, and access to Debian's package archive.
set -euo pipefail

if [ "$(id -u)" -ne 0 ]; then
    exec sudo "$0" "$@"
fi
# Mounts made here are visible to this process only, and end with it.
if [ -z "${in_own_namespace:-}" ]; then
    in_own_namespace=1 exec unshare --mount --propagation private "$0" "$@"
fi

packages=$(realpath "$1")
root=$(mktemp -d)
chmod 755 "$root"
trap clean_up EXIT
. /etc/os-release

# Unmounts first: the mounted folders are those of the machine itself.
clean_up() {
    local folder
    for folder in dev proc sys; do
        if mountpoint -q "$root/$folder"; then
            umount --recursive --lazy "$root/$folder" || return
        fi
    done
    rm -rf --one-file-system "$root"
}

fail() {
    echo "$*" >&2
    exit 1
}

inside() {
    chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 HOME=/tmp \
        DEBIAN_FRONTEND=noninteractive ${http_proxy:+http_proxy="$http_proxy"} "$@"
}

apt() {
    inside apt-get -q -y --no-install-recommends "$@" >"$root/apt.log" 2>&1 || {
        cat "$root/apt.log"
        fail "apt-get $* has failed."
    }
}

# Lists all files and folders, except package data, caches and logs.
listing() {
    (cd "$root" && find . -xdev \( -path ./var/lib/apt -o -path ./var/lib/dpkg -o -path ./var/cache \
        -o -path ./var/log \) -prune -o -print | sort)
}

nothing_left() {
    diff "$root/before" <(listing) || fail "Removing $* has left the files with \">\"."
}

debootstrap --variant=minbase "$VERSION_CODENAME" "$root" >"$root.log" || {
    cat "$root.log"
    fail "debootstrap has failed."
}
rm "$root.log"
mount --rbind /dev "$root/dev"
mount -t proc proc "$root/proc"
mount --rbind /sys "$root/sys"
mkdir "$root/packages"
cp "$packages"/*.deb "$root/packages"
touch "$root/apt.log" "$root/before"
apt update
listing >"$root/before"

echo "== the programs"
apt install "$(cd "$root" && echo ./packages/zserial_*.deb)"
chroot --userspec=nobody "$root" /usr/share/doc/zserial/examples/demo.sh | tee "$root/packages/demo"
grep -q '^device memory holds blink.hex: 5120 bytes' "$root/packages/demo" ||
    fail "The demo has not programmed the device."
rm "$root/packages/demo"
apt purge zserial
apt autoremove --purge
nothing_left zserial

echo "== the device rules, as udev reads them"
apt install "$(cd "$root" && echo ./packages/zserial_*.deb)" udev
inside udevadm test --action=add /sys/class/tty/tty0 >"$root/packages/udev" 2>&1
grep -q 'Reading rules file: .*70-zserial.rules' "$root/packages/udev" ||
    fail "udev does not read the rules."
! grep '70-zserial.rules:' "$root/packages/udev" || fail "udev refuses the lines above."
echo 'TAGS+="uaccess"' >>"$root/usr/lib/udev/rules.d/70-zserial.rules"
# Into a file: udevadm would fail to print to a grep that has found what it looks for and ended.
inside udevadm test --action=add /sys/class/tty/tty0 >"$root/packages/udev" 2>&1
grep -q '70-zserial.rules:' "$root/packages/udev" ||
    fail "udev does not report bad rules, so the check above shows nothing."

echo "== the libraries"
apt install "$(cd "$root" && echo ./packages/libzserial-dev_*.deb)" cmake g++ ninja-build libgtest-dev
for example in embed test-your-upload; do
    inside cmake -S "/usr/share/doc/zserial/examples/$example" -B "/tmp/$example" -G Ninja
    inside cmake --build "/tmp/$example"
done
inside ctest --test-dir /tmp/test-your-upload --no-tests=error --output-on-failure
apt purge zserial libzserial-dev
left=$(find "$root" -xdev -path "$root/packages" -prune -o -iname '*zserial*' \
    -not -path '*/var/lib/dpkg/*' -not -path "$root/tmp/*" -print)
[ -z "$left" ] || fail "Removing the packages has left $left."
