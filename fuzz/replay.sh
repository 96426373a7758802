#!/bin/sh
# replay.sh TARGET COMMAND...: the stored inputs of the target have the outcomes that are stored
# beside them, and those that once found a fault find none.
folder=$(dirname "$0")
target=$1
shift
inputs=$folder/corpora/$target.pack
for found in "$folder/found/$target"-*; do
    if [ -e "$found" ]; then inputs="$inputs $found"; fi
done
# shellcheck disable=SC2086  # one word a file
"$@" "$target" $inputs >"$target.outcomes" || exit
diff "$folder/corpora/$target.outcomes" "$target.outcomes"
