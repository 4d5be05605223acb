#!/bin/bash
# Runs each fuzzer for so many seconds, from the corpora in the tree. What it finds besides is kept
# in build/fuzz/found: a crash to look at, new inputs to merge into fuzz/corpus.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:?"usage: $0 SECONDS"}
log() { printf '\n== %s\n' "$*"; }

log "Building preset fuzz"
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz | tail -1

log_file=$(mktemp)
trap 'rm -f "$log_file"' EXIT

for target in reply calls regroup; do
    log "fuzz_$target for $seconds seconds"
    found=build/fuzz/found/$target
    mkdir -p "$found"
    if ! build/fuzz/bin/fuzz_$target -max_total_time="$seconds" -max_len=600 -timeout=20 \
        -rss_limit_mb=2048 -print_final_stats=1 -artifact_prefix="$found-" \
        "$found" fuzz/corpus/$target >"$log_file" 2>&1; then
        tail -60 "$log_file"
        exit 1
    fi
    grep -E '^#[0-9]+[[:space:]]+DONE|^stat::number_of_executed' "$log_file"
done
