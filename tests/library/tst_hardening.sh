#!/bin/bash
# How the built library is hardened, seen in the file itself. LIBRARY native|cross
set -euo pipefail
library=$1
built=$2
failed=0

expect() { # DESCRIPTION ACTUAL EXPECTED
    [ "$2" = "$3" ] && return
    printf '%s: expected "%s", got "%s"\n' "$1" "$3" "$2"
    failed=1
}
# How many lines of what a command says match.
count() { # PATTERN COMMAND...
    "${@:2}" 2>&1 | grep -cE "$1" || true
}

segments=(readelf -lW "$library")
dynamic=(readelf -dW "$library")
expect "segments read-only after relocation" "$(count GNU_RELRO "${segments[@]}")" 1
expect "symbols bound at once (BIND_NOW)" "$(count '\(FLAGS\).*BIND_NOW' "${dynamic[@]}")" 1
expect "symbols bound at once (NOW)" "$(count '\(FLAGS_1\).*NOW' "${dynamic[@]}")" 1
expect "flags of the stack" "$("${segments[@]}" | awk '$1 == "GNU_STACK" { print $7 }')" RW
expect "segments both writable and executable" "$(count 'LOAD.* RWE' "${segments[@]}")" 0
expect "text relocations" "$(count TEXTREL "${dynamic[@]}")" 0
expect "imports of __stack_chk_fail" "$(count ' __stack_chk_fail(@|$)' nm -Du "$library")" 1
# ldd knows the machine's own libraries only; the linker looks for the same wherever it links (-z defs).
if [ "$built" = native ]; then
    expect "symbols that nothing needed defines" "$(count 'undefined symbol' ldd -r "$library")" 0
fi
# The dynamic linker itself is needed where the stack guard lives in it.
expect "libraries needed" \
    "$("${dynamic[@]}" | sed -n 's/.*(NEEDED).*\[\(.*\)\.so\..*/\1/p' | grep -v '^ld-linux' |
        sed 's/^libQt5Core$/libQtCore/' | sort | xargs)" \
    "libQtCore libc libgcc_s libstdc++"
exit "$failed"
