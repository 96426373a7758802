#!/bin/sh
# format.sh SOURCE_DIR
#
# std::format takes the library's values, with a compiler whose standard library has it.
sources=$1
room=$(mktemp -d) || exit
trap 'rm -rf "$room"' EXIT
printf '#include <format>\nint main() { return std::format("{}", 4) != "4"; }\n' >"$room/has.cpp"

# build PROGRAM COMPILER FLAG... SOURCE...
build() {
    program=$1
    compiler=$2
    shift 2
    "$compiler" -std=c++20 -Wall -Wextra -Werror -I"$sources/common" -I"$sources/platform" "$@" \
        -pthread -o "$room/$program"
}

# serves COMPILER FLAG...: formats with this one, if it can.
serves() {
    command -v "$1" >/dev/null && build has "$@" "$room/has.cpp" 2>/dev/null || return
    echo "with $*"
    build formats "$@" "$sources"/common/*.cpp "$sources/tests/structure/format.cpp" &&
        "$room/formats"
    exit
}

for version in '' -19 -18 -17 -16 -15 -14 -13; do serves "g++$version"; done
for version in '' -19 -18 -17 -16; do
    serves "clang++$version"
    serves "clang++$version" -stdlib=libc++ -fexperimental-library
done
echo "Skipped: no compiler here has std::format"
exit 77
