#!/bin/bash
# Only what Qt 4.8 and Qt 5 have in common, in the driver and the tests that go with it to the panel.
# qt5-only.txt beside this file lists what is not, and what to use instead.
set -euo pipefail
cd "$(dirname "$0")/.."

# host/ and its tests, with their cases, are Qt 5; the last knows the inside of one Qt and is built with ThreadSanitizer only.
files() {
    find check data driver encode include lists tests fuzz \( -name '*.cpp' -o -name '*.h' \) \
        -not -path 'tests/panel/*' -not -path 'tests/plc/*' -not -path 'tests/peers/*' \
        -not -path 'tests/soak/*' -not -path 'tests/support/cases.*' \
        -not -path tests/threads/qt_for_tsan.cpp | sort
}

failed=0
patterns=0
while IFS= read -r line; do
    case $line in "" | "#"*) continue ;; esac
    pattern=${line%% -> *}
    patterns=$((patterns + 1))
    grep -qE -- "$pattern" /dev/null || [ $? -eq 1 ] # else no pattern at all
    found=$(files | xargs grep -nE -- "$pattern" | grep -vE '^[^:]+:[0-9]+: *//' || true)
    [ -n "$found" ] || continue
    printf '%s\nuse instead: %s\n' "$found" "${line#* -> }"
    failed=1
done <scripts/qt5-only.txt
[ "$failed" -eq 0 ]
echo "Qt: $(files | wc -l) files use none of the $patterns things that Qt 4.8 does not have"
