#!/usr/bin/env bash
# killsave.sh SAVELOOP [TIMES]: two programs that save the same file over and over are killed at random moments. Whatever
# they were doing, the file is one of the two that they save, whole, and the next save leaves nothing else behind.
set -euo pipefail
save_loop=$1
times=${2-200}
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

"$save_loop" "$folder/first" 1
"$save_loop" "$folder/second" 2

seen_first=0
seen_second=0
seen_left=0
for ((i = 0; i < times; ++i)); do
    rm -f "$folder/saved"
    "$save_loop" "$folder/saved" 1000000 &
    programs=($!)
    "$save_loop" "$folder/saved" 1000000 &
    programs+=($!)
    for ((waited = 0; waited < 3000; ++waited)); do # for its first save
        if [ -e "$folder/saved" ]; then break; fi
        sleep 0.01
    done
    sleep "0.0$((RANDOM % 30 + 10))"
    kill -KILL "${programs[@]}" || true
    for program in "${programs[@]}"; do
        status=0
        wait "$program" 2>/dev/null || status=$?
        if [ "$status" -ne 137 ]; then # killed
            echo "$0: a program has ended with $status: a save failed" >&2
            exit 1
        fi
    done
    for file in "$folder"/.saved.*; do
        if [ -e "$file" ]; then seen_left=$((seen_left + 1)); fi
    done
    if cmp -s "$folder/saved" "$folder/first"; then
        seen_first=$((seen_first + 1))
    elif cmp -s "$folder/saved" "$folder/second"; then
        seen_second=$((seen_second + 1))
    else
        echo "$0: after $i kills the file is neither the old nor the new one: $(wc -c <"$folder/saved") bytes" >&2
        exit 1
    fi
done
"$save_loop" "$folder/saved" 1
rm "$folder/first" "$folder/second" "$folder/saved"
if [ -n "$(ls -A "$folder")" ]; then
    echo "$0: the last save has not removed:" >&2
    ls -lA "$folder" >&2
    exit 1
fi
if [ "$seen_first" -eq 0 ] || [ "$seen_second" -eq 0 ] || [ "$seen_left" -eq 0 ]; then
    echo "$0: the file was always the same, or no program was killed while it wrote: nothing was tried" >&2
    exit 1
fi
echo "killed $times times: $seen_first times the one content, $seen_second times the other, $seen_left files left"
