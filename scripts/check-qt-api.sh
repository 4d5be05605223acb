#!/bin/bash
# Only what Qt 4.8 and Qt 5 have in common, in the driver and the tests that go with it to the panel.
# qt5-only.txt beside this file lists what is not, and what to use instead.
set -euo pipefail
cd "$(dirname "$0")/.."

# host/ and its tests, with their cases, are Qt 5; the last knows the inside of one Qt and is built with ThreadSanitizer only.
files() {
    echo "$fragments"
    find check data driver encode include lists tests fuzz \( -name '*.cpp' -o -name '*.h' \) \
        -not -path 'tests/panel/*' -not -path 'tests/plc/*' -not -path 'tests/peers/*' \
        -not -path 'tests/soak/*' -not -path 'tests/support/cases.*' \
        -not -path tests/threads/qt_for_tsan.cpp | sort
}

fragments=$(mktemp) # the C++ of the documents, which the tests compile
trap 'rm -f "$fragments"' EXIT
awk -f tests/docs/code.awk docs/integration.md >"$fragments"

examples=scripts/qt5-only-examples.txt
failed=0
patterns=0
while IFS= read -r line; do
    case $line in "" | "#"*) continue ;; esac
    pattern=${line%% -> *}
    patterns=$((patterns + 1))
    if ! grep -qE -- "$pattern" "$examples"; then # then it may find nothing at all
        echo "scripts/qt5-only.txt: '$pattern' finds no line of $examples"
        failed=1
    fi
    found=$(files | xargs grep -nE -- "$pattern" | grep -vE '^[^:]+:[0-9]+: *//' || true)
    [ -n "$found" ] || continue
    printf '%s\nuse instead: %s\n' "$found" "${line#* -> }"
    failed=1
done <scripts/qt5-only.txt
[ "$failed" -eq 0 ]
all=$(sed -E '/^#|^$/d; s/ -> .*//' scripts/qt5-only.txt)
if missed=$(grep -vE -- "$all" "$examples"); then
    printf 'scripts/qt5-only.txt finds none of these:\n%s\n' "$missed"
    exit 1
fi
echo "Qt: $(files | wc -l) files use none of the $patterns things that Qt 4.8 does not have"
