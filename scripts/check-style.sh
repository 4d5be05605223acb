#!/bin/bash
# Format, layering, and (with a configured build folder as argument) clang-tidy.
set -euo pipefail
cd "$(dirname "$0")/.."

rooms=()
for room in check data driver encode host include lists tests bench fuzz; do
    [ ! -d "$room" ] || rooms+=("$room")
done
sources() { find "${rooms[@]}" -name '*.cpp' -o -name '*.h' | sort; }

echo "clang-format: $(sources | wc -l) files"
sources | xargs clang-format --dry-run --Werror

# No arrow points up: each room and the rooms whose headers it may include.
declare -A may_include=(
    [include]=""
    [check]="check"
    [data]="check data"
    [lists]="check lists"
    [encode]="check data lists encode"
    [driver]="check data lists encode driver"
    [host]=""
    [bench]=""
)
failed=0
for room in "${!may_include[@]}"; do
    for other in check data lists encode driver; do
        [[ " ${may_include[$room]} " == *" $other "* ]] && continue
        if grep -rnE "#include \"$other/" "$room" --include='*.cpp' --include='*.h'; then
            echo "$room/ must not include $other/"
            failed=1
        fi
    done
done
long=$(sources | xargs wc -l | awk '$2 != "total" && $1 > 400')
if [ -n "$long" ]; then
    echo "Files of more than 400 lines:" "$long"
    failed=1
fi
[ "$failed" -eq 0 ]
echo "layering: no arrow points up"

scripts/check-qt-api.sh

if [ $# -eq 1 ]; then
    echo "clang-tidy, with the compile commands of $1"
    find check data driver encode host lists -name '*.cpp' -print0 |
        xargs -0 -n 1 -P "$(nproc)" clang-tidy --quiet -p "$1" 2>/dev/null
fi
