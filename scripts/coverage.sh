#!/bin/bash
# Line and branch coverage of the driver by the tests that run it in their own process: those of its
# functions, and those that load the library, whose objects are the same and so count together.
set -euo pipefail
cd "$(dirname "$0")/.."
build=build/coverage

quietly() { # shows the output of a step only when it fails
    "$@" >"$log" 2>&1 || { tail -60 "$log"; return 1; }
}
log=$(mktemp)
trap 'rm -f "$log"' EXIT

quietly cmake --preset coverage
quietly cmake --build --preset coverage
find "$build" -name '*.gcda' -delete
quietly ctest --preset coverage
tail -3 "$log"
# Of the random calls a part: unoptimised and counted, all of them take minutes.
quietly "$build/bin/tst_model" sameAsTheModel:300

# Branches that only an exception takes are left out: the compiler puts one behind nearly every call,
# and there is one exception only, of failed memory, which tests/alloc raises wherever it can arise.
# So are those that it marks as unreachable, of code that it wrote itself.
gcovr "$build/CMakeFiles/kp410_core.dir" --root . \
    --filter check/ --filter data/ --filter driver/ --filter encode/ --filter lists/ \
    --exclude-throw-branches --exclude-unreachable-branches \
    --fail-under-line 98 --fail-under-branch 90 --print-summary "$@"
