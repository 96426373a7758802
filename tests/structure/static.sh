#!/bin/sh
# static.sh SOURCE_DIR
# with the environment of installed.sh
#
# The library can be built as libtqcommon.a, and its package then serves a program just so.
build=$(mktemp -d)
trap 'rm -rf "$build"' EXIT

{
    "$CMAKE" -S "$1" -B "$build" -G "$GENERATOR" -DCMAKE_CXX_COMPILER="$COMPILER" \
        -DBUILD_SHARED_LIBS=OFF -DTQ_BUILD_TESTS=OFF -DTQ_BUILD_EXAMPLES=OFF -DTQ_BUILD_TOOLS=OFF &&
        "$CMAKE" --build "$build" -j 2
} >"$build/log" 2>&1 || {
    cat "$build/log"
    exit 1
}
[ -e "$build/libtqcommon.a" ] || exit 1
sh "$(dirname "$0")/installed.sh" "$build"
