#!/bin/bash
# Instructions of the guarded rows on 32-bit ARM, counted by qemu: what a hundred operations more
# take, for one of them. What a row puts back is counted with it.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-packages.sh bench
scripts/install-packages.sh armhf
root=$(scripts/target-root.sh armhf)
build=build/bench-armhf
cmake --preset bench-armhf >/dev/null
cmake --build "$build" --target bench_once talmor_kp410_port >/dev/null
g++ -std=c++17 -O2 -Wall -Wextra -shared -fPIC -o "$build/lib/count_instructions.so" \
    bench/count_instructions.cpp

executed() { # ROW N
    qemu-arm -L "$root" -E "LD_LIBRARY_PATH=$PWD/$build/lib" \
        -plugin "$build/lib/count_instructions.so" "$build/bin/bench_once" "$@" 2>&1 | tail -n 1
}

while read -r line; do
    row=${line% *}
    few=$(executed "$row" 10)
    many=$(executed "$row" 110)
    printf '%-45s %10d\n' "$row" $(((many - few) / 100))
done <bench/guard.txt
