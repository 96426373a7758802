#!/bin/sh
# short.sh TARGET PROGRAM: the stored inputs, and as many more as a few seconds allow, the same ones
# each time.
folder=$(dirname "$0")
work=$1.short
rm -rf "$work"
"$folder/pack" out "$folder/corpora/$1.pack" "$work/corpus" || exit
exec "$2" -runs=5000 -max_total_time=30 -seed=1 -timeout=20 -rss_limit_mb=1024 \
    -artifact_prefix="$work/" "$work/corpus"
