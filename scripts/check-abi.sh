#!/bin/bash
# Compares the interface of the built library with the one that abi/ keeps for each architecture: what a
# runtime was compiled against must not change under it. --renew keeps the interface as it is now.
set -euo pipefail
cd "$(dirname "$0")/.."

usage() {
    echo "usage: $0 [--renew] amd64|armhf" >&2
    exit 2
}

renew=no
if [ "${1:-}" = --renew ]; then
    renew=yes
    shift
fi
[ $# -eq 1 ] || usage
case $1 in
amd64) ;;
armhf) scripts/target-root.sh armhf >/dev/null ;;
*) usage ;;
esac

now=$(mktemp --suffix=.abi)
report=$(mktemp)
trap 'rm -f "$now" "$report"' EXIT
quietly() { # shows the output of a step only when it fails
    "$@" >"$report" 2>&1 || { tail -60 "$report"; return 1; }
}
# Of what is optimised across files the compiler does not say which object is which.
build=build/abi-$1
quietly cmake --preset "abi-$1"
quietly cmake --build "$build" --target talmor_kp410_port
abidw --exported-interfaces-only --drop-undefined-syms --no-elf-needed --type-id-style hash \
    --no-corpus-path --no-comp-dir-path --no-show-locs \
    "$build/lib/libtalmor_kp410_port.so.1" | scripts/trim-abi.py >"$now"

kept=abi/$1.abi
if [ $renew = yes ]; then
    cp "$now" "$kept"
    echo "$kept: renewed, $(wc -l <"$kept") lines"
    exit 0
fi
if ! abidiff --no-added-syms "$kept" "$now" >"$report" 2>&1; then
    cat "$report"
    echo "The interface for $1 is not that of $kept: a runtime compiled before would break." >&2
    echo "If that is meant, raise the major version and run: scripts/check-abi.sh --renew $1" >&2
    exit 1
fi
if ! abidiff "$kept" "$now" >"$report" 2>&1; then
    cat "$report"
    echo "New names break nothing; to keep them as well: scripts/check-abi.sh --renew $1"
fi
echo "The interface for $1 is that of $kept."
