#!/bin/sh
# planted.sh TARGET PROGRAM: finds the fault that was planted within a minute.
folder=$(dirname "$0")
work=$1.planted
rm -rf "$work"
"$folder/pack" out "$folder/corpora/$1.pack" "$work/corpus" || exit
start=$(date +%s)
"$2" -max_total_time=60 -seed=1 -timeout=20 -rss_limit_mb=1024 -artifact_prefix="$work/" \
    "$work/corpus" >"$work/log" 2>&1
status=$?
words=$(grep -m 1 -oE 'does not hold: .*|ERROR: AddressSanitizer: [A-Za-z-]*|runtime error: .*|ERROR: LeakSanitizer' "$work/log")
if [ $status -eq 0 ] || [ -z "$words" ]; then
    echo "FAIL $1: the planted fault was not found"
    tail -n 20 "$work/log"
    exit 1
fi
echo "OK   $1: found after $(($(date +%s) - start)) s: $words"
