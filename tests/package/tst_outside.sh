#!/bin/bash
# Whether a runtime outside the tree can be built with what was installed in a prefix, and no more, and
# runs with it: through pkg-config, and through CMake's find_package.
set -euo pipefail
prefix=$(realpath "$1")
cxx=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp "$(dirname "$0")"/outside/* "$work"
cd "$work"
frame=010300640001c5d5

fail() {
    echo "$*" >&2
    exit 1
}
description=$(find "$prefix" -name talmor_kp410_port.pc)
library=$(find "$prefix" -name libtalmor_kp410_port.so.1)
export PKG_CONFIG_PATH=${description%/*}
check() { # WAY PROGRAM
    local said
    said=$(LD_LIBRARY_PATH=${library%/*} "$2") || fail "$1: the host ends with $?"
    [ "$said" = "$frame" ] || fail "$1: expected the frame '$frame', got '$said'"
    said=$(LD_LIBRARY_PATH=${library%/*} ldd "$2")
    [[ $said = *"$library"* ]] || fail "$1: expected $library, got $said"
}

eval "flags=($(pkg-config --cflags talmor_kp410_port))" # which quotes what the shell would take
echo '#include <talmor_kp410_port.h>' |
    "$cxx" -std=c++17 -fPIC -Wall -Wextra -Werror -fsyntax-only "${flags[@]}" -x c++ -
eval "libraries=($(pkg-config --libs talmor_kp410_port))"
"$cxx" -std=c++17 -fPIC -Wall -Wextra -Werror "${flags[@]}" host.cpp "${libraries[@]}" -o by_pkg_config
check pkg-config ./by_pkg_config

configure() { # VERSION
    cmake -S . -B build -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_PREFIX_PATH="$prefix" -DWANTED="$1"
}
configure "$(pkg-config --modversion talmor_kp410_port)" >log 2>&1 || fail "$(cat log)"
cmake --build build >log 2>&1 || fail "$(cat log)"
check find_package build/host
rm -r build
! configure 0.9 >log 2>&1 || fail "find_package takes this version for one of another major version"
echo "pkg-config and find_package: the host asks for $frame"
