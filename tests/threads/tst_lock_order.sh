#!/bin/bash
# In debug builds a wrong order of locks ends the program, and says which two. Each row: the locks
# as they are taken and given back, and, of a wrong order, the one taken last and the one held.
failed=0
while read -r letters taken held; do
    said=$("$@" "$letters" 2>&1 && echo ended)
    expected=ended
    [ -z "$taken" ] || expected="lock order: ${taken}Mutex taken while ${held}Mutex is held"
    [ "${said%%$'\n'*}" = "$expected" ] && continue
    printf '%s: expected "%s", got "%s"\n' "$letters" "$expected" "$said"
    failed=1
done <<'ROWS'
L
LD
LS
D-L-S-D
LD-S--L
LL list list
DL list storage
SL list station
DD storage storage
SD storage station
DS station storage
SS station station
LDS station storage
LD-SD storage station
ROWS
exit "$failed"
