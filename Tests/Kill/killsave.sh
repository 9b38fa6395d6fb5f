#!/usr/bin/env bash
# killsave.sh SAVELOOP [TIMES]: a program that saves a file over and over is killed at random moments. Whatever it was
# doing, the file has to be one of the two that it saves, whole.
set -euo pipefail
save_loop=$1
times=${2-200}
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

"$save_loop" "$folder/first" 1
"$save_loop" "$folder/second" 2

seen_first=0
seen_second=0
for ((i = 0; i < times; ++i)); do
    rm -f "$folder/saved"
    "$save_loop" "$folder/saved" 1000000 &
    program=$!
    for ((waited = 0; waited < 3000; ++waited)); do # for its first save
        if [ -e "$folder/saved" ]; then break; fi
        sleep 0.01
    done
    sleep "0.0$((RANDOM % 30 + 10))"
    kill -KILL "$program"
    wait "$program" 2>/dev/null || true
    if cmp -s "$folder/saved" "$folder/first"; then
        seen_first=$((seen_first + 1))
    elif cmp -s "$folder/saved" "$folder/second"; then
        seen_second=$((seen_second + 1))
    else
        echo "$0: after $i kills the file is neither the old nor the new one: $(wc -c <"$folder/saved") bytes" >&2
        exit 1
    fi
done
if [ "$seen_first" -eq 0 ] || [ "$seen_second" -eq 0 ]; then
    echo "$0: the file was always the same; nothing was tried" >&2
    exit 1
fi
echo "killed $times times: $seen_first times the one content, $seen_second times the other"
