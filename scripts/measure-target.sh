#!/bin/bash
# What the library weighs and how long it takes to load, as built for each target and for this machine:
# bytes of the stripped file and of its sections, relocations, microseconds of a dlopen (the middle of
# 21 processes, each of which has Qt). A stripped ARM library of more than 150 KiB needs a reason.
set -euo pipefail
cd "$(dirname "$0")/.."

bytes() { # SECTION...
    size -A "$library" | awk -v names=" $* " 'index(names, " " $1 " ") { n += $2 } END { print n + 0 }'
}

measure() { # PRESET, then what starts its programs
    local preset=$1 build=build/$1 library load
    cmake --preset "$preset" >/dev/null
    cmake --build "$build" --target talmor_kp410_port load_time >/dev/null
    library=$build/stripped-libtalmor_kp410_port.so.1
    "$(sed -n 's/^CMAKE_STRIP:.*=//p' "$build/CMakeCache.txt")" -o "$library" \
        "$build/lib/libtalmor_kp410_port.so.1"
    load=$(for _ in {1..21}; do "${@:2}" "$build/bin/load_time" "$PWD/$library"; done | sort -n | sed -n 11p)
    printf '%-6s %8d %8d %6d %6d %6d %8d\n' "$preset" "$(stat -c %s "$library")" "$(bytes .text .plt .plt.sec)" \
        "$(bytes .data .data.rel.ro .init_array .got)" "$(bytes .bss)" \
        "$(readelf -rW "$library" | grep -c ' R_')" "$load"
}

printf '%-6s %8s %8s %6s %6s %6s %8s\n' target file text data bss relocs load_us
measure gcc
measure i386
measure armhf qemu-arm -L build/targets/armhf-root
