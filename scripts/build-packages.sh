#!/bin/bash
# Builds the Debian packages, of this machine or of a target, in build/debian/ARCHITECTURE, and looks at
# what is in them: the exported symbols, what lintian says, and on this machine whether a runtime can be
# built with them.
set -euo pipefail
cd "$(dirname "$0")/.."

usage() {
    echo "usage: $0 [armhf]" >&2
    exit 2
}

native=$(dpkg --print-architecture)
architecture=${1:-$native}
preset=gcc
[ $# -le 1 ] || usage
case $architecture in
"$native") ;;
armhf)
    preset=packages-armhf
    root=$(scripts/target-root.sh armhf)
    # dpkg-shlibdeps finds the target's libraries, and the packages they are of, in the target's root.
    export DEB_HOST_ARCH=armhf DPKG_ADMINDIR=$root/var/lib/dpkg
    ;;
*) usage ;;
esac

log=$(mktemp)
unpacked=$(mktemp -d)
trap 'rm -rf "$log" "$unpacked"' EXIT
quietly() { # shows the output of a step only when it fails
    "$@" >"$log" 2>&1 || { tail -60 "$log"; return 1; }
}
packages=$PWD/build/debian/$architecture
rm -rf "$packages"
quietly cmake --preset "$preset"
quietly cmake --build "build/$preset" --target packaged
quietly cpack --config "build/$preset/CPackConfig.cmake" -B "$packages"
rm -r "$packages/_CPack_Packages"
unset DPKG_ADMINDIR

for package in "$packages"/*.deb; do
    dpkg-deb --extract "$package" "$unpacked"
    printf '%8d %s\n' "$(stat -c %s "$package")" "${package#"$PWD/"}"
    dpkg-deb --field "$package" Depends | sed 's/^/         needs /'
done
# dpkg-shlibdeps is content with less where it finds no packages.
needs=$(dpkg-deb --field "$packages"/libtalmor-kp410-port1_*.deb Depends)
[[ $needs = *"libqt5core5a (>= "* ]] ||
    { echo "The library's package does not name the Qt that it needs." >&2; exit 1; }
# Level 4: no symbol is gone, and none is new that cmake/packaging/symbols does not name. Only a version
# behind that of the symbols is asked where they are.
quietly dpkg-gensymbols -c4 -plibtalmor-kp410-port1 -Icmake/packaging/symbols \
    -v"$(dpkg-parsechangelog -lcmake/packaging/changelog -SVersion)+built" \
    -e"$(find "$unpacked" -name 'libtalmor_kp410_port.so.1.*')" -O/dev/null
lintian --allow-root --fail-on error,warning "$packages"/*.deb
[ "$architecture" != "$native" ] || tests/package/tst_outside.sh "$unpacked/usr" g++
