#!/bin/bash
# Unpacks what a 32-bit target runs with, its C library and its Qt, in a folder of the build tree, and
# prints the folder. The machine itself stays as it is: apt, with its own sources but with lists,
# state and cache in that folder, is told that the target is the machine. Only what the target runs
# with is fetched; headers and tools are the machine's.
set -euo pipefail
cd "$(dirname "$0")/.."

usage() {
    echo "usage: $0 armhf|i386" >&2
    exit 2
}

[ $# -eq 1 ] || usage
packages=(libqt5core5a libqt5test5)
case $1 in
armhf) packages+=(libqt5network5 libqt5serialport5 libncursesw6 libtinfo6 libmodbus5) ;; # programs, bench
i386) packages+=(libasan8 libubsan1) ;;
*) usage ;;
esac

apt=$PWD/build/targets/$1-apt
root=$PWD/build/targets/$1-root
if [ "$(cat "$root.complete" 2>/dev/null)" = "${packages[*]}" ]; then
    echo "$root"
    exit 0
fi

own_apt() {
    apt-get -q -o APT::Architecture="$architecture" -o APT::Architectures="$architecture" \
        -o APT::Sandbox::User="$(id -un)" -o APT::Install-Recommends=false \
        -o Acquire::Languages=none -o Dir::State="$apt/state" -o Dir::Cache="$apt/cache" \
        -o Dir::State::status="$apt/status" "$@" >&2
}

# dpkg's database of the target, with the files where they are here: dpkg-shlibdeps asks it for packages.
database=$root/var/lib/dpkg
record() { # DEB
    local name part
    name=$(dpkg-deb --field "$1" Package)
    [ "$(dpkg-deb --field "$1" Multi-Arch)" != same ] || name+=:$architecture
    rm -rf "$apt/control"
    dpkg-deb --control "$1" "$apt/control"
    for part in symbols shlibs; do
        [ ! -e "$apt/control/$part" ] || cp "$apt/control/$part" "$database/info/$name.$part"
    done
    dpkg-deb --fsys-tarfile "$1" | tar --list | sed "s|^\.|$root|; s|/\$||" >"$database/info/$name.list"
    { dpkg-deb --field "$1"; printf 'Status: install ok installed\n\n'; } >>"$database/status"
}

architecture=$1
rm -rf "$apt"
mkdir -p "$apt/state/lists/partial" "$apt/cache/archives/partial"
: >"$apt/status" # nothing is installed
# A list that a mirror is about to replace may be missing for a while; the others have all that is needed.
own_apt update || echo "$0: going on with the lists that there are" >&2
own_apt install --yes --download-only "${packages[@]}"
rm -rf "$root" "$root.complete"
mkdir -p "$root"
for package in "$apt"/cache/archives/*.deb; do
    dpkg-deb --extract "$package" "$root"
done
mkdir -p "$database/info"
echo 1 >"$database/info/format"
for package in "$apt"/cache/archives/*.deb; do
    record "$package"
done
rm -rf "$apt"
echo "${packages[*]}" >"$root.complete"
echo "$root"
