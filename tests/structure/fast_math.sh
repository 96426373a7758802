#!/bin/sh
# fast_math.sh SOURCE_DIR EMULATOR...
# with the environment of installed.sh
#
# Values keep to what their headers say when the library and the program are built with flags that
# let a compiler take every number for one.
sources=$1
shift
room=$(mktemp -d) || exit
trap 'rm -rf "$room"' EXIT
flags='-O2 -ffast-math'

{
    "$CMAKE" -S "$sources" -B "$room" -G "$GENERATOR" -DCMAKE_CXX_COMPILER="$COMPILER" \
        -DCMAKE_TOOLCHAIN_FILE="$TOOLCHAIN" -DCMAKE_CXX_FLAGS="$flags" -DTQ_BUILD_TESTS=OFF \
        -DTQ_BUILD_EXAMPLES=OFF -DTQ_BUILD_TOOLS=OFF && "$CMAKE" --build "$room" -j 2
} >"$room/log" 2>&1 || { cat "$room/log"; exit 1; }

# shellcheck disable=SC2086  # several flags
"$COMPILER" $flags -std=c++11 $LINK_FLAGS -I"$sources/common" -I"$sources/platform" \
    "$sources/tests/structure/fast_math.cpp" -o "$room/fast_math" "$room/libtqcommon.so" \
    -Wl,-rpath,"$room" -pthread || exit
"$@" "$room/fast_math"
