#!/bin/sh
# compiled_in.sh SOURCES PLATFORM LIBRARY LINK_FLAGS EMULATOR "COMPILER FLAGS"...
#
# The program of compiled_in.cpp prints the same however it is compiled, and the first way is to
# call the library for everything. Nothing is warned of.
sources=$1
platform=$2
library=$3
link_flags=$4
emulator=$5
shift 5
work=$(mktemp -d) || exit
trap 'rm -rf "$work"' EXIT

failed=0
for way; do
    if ! command -v "${way%% *}" >/dev/null; then
        echo "left out, no ${way%% *}: $way"
        continue
    fi
    # shellcheck disable=SC2086  # commands and their flags
    if ! { $way -Wall -Wextra -Wpedantic -Wredundant-decls -Werror \
        -I"$sources/common" -I"$platform" "$sources/tests/abi/compiled_in.cpp" "$library" \
        -Wl,-rpath,"$(dirname "$library")" $link_flags -o "$work/program" &&
        timeout 60 $emulator "$work/program" >"$work/got" && grep -q '^done$' "$work/got"; }; then
        echo "failed: $way"
        failed=1
        continue
    fi
    if [ ! -e "$work/expected" ]; then
        mv "$work/got" "$work/expected"
    elif cmp -s "$work/expected" "$work/got"; then
        echo "same: $way"
    else
        echo "differs: $way"
        diff "$work/expected" "$work/got"
        failed=1
    fi
done
exit $failed
