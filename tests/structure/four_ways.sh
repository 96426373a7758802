#!/bin/bash
# four_ways.sh SOURCE_DIR [PREFIX|BUILD_DIR]
#
# The README's program, built as the README says by CMake, make, Meson and Autotools, against what is
# installed under PREFIX, what CMake installs from BUILD_DIR, or what the system has.
source=$(cd "$1" && pwd)
room=$(mktemp -d)
trap 'rm -rf "$room"' EXIT
program=$room/program

fail() {
    echo "$1"
    exit 1
}

# block LANGUAGE: the code of the README in that language.
block() {
    awk -v start="\`\`\`$1" '$0 == "```" { inside = 0 } inside; $0 == start { inside = 1 }' \
        "$source/README.md"
}

# use PREFIX: lets programs be built and run with what is there.
use() {
    local package
    package=$(find "$1" -name tqcommon.pc)
    [ -n "$package" ] || fail "nothing is installed in $1"
    package=${package%/*}
    export PKG_CONFIG_PATH=$package LD_LIBRARY_PATH=${package%/*} CMAKE_PREFIX_PATH=$1
}

write_program() {
    mkdir "$program"
    block cpp >"$program/answer.cpp"
    block cmake >"$program/CMakeLists.txt"
    block make >"$program/Makefile"
    block meson >"$program/meson.build"
    block m4 >"$program/configure.ac"
    block automake >"$program/Makefile.am"
}

by_cmake() { cmake -B by-cmake . && cmake --build by-cmake; }
by_make() { mkdir by-make && make && mv answer by-make; }
by_meson() { meson setup by-meson && meson compile -C by-meson; }
by_autotools() {
    autoreconf --install && mkdir by-autotools && cd by-autotools && ../configure && make
}

for tool in pkg-config meson ninja autoreconf aclocal; do
    command -v $tool >/dev/null || { echo "Skipped: $tool is not installed"; exit 77; }
done
unset CXXFLAGS LDFLAGS DESTDIR
if [ -e "$2/CMakeCache.txt" ]; then
    cmake --install "$2" --prefix "$room/prefix" >/dev/null || fail "cannot be installed"
    use "$room/prefix"
elif [ -n "$2" ]; then
    use "$2"
fi

write_program
cd "$program" || exit
for way in cmake make meson autotools; do
    ("by_$way") >"$room/log" 2>&1 || fail "$(cat "$room/log")"
    [ "$("by-$way/answer")" = 42 ] || fail "not 42 by $way"
    echo "42 by $way"
done
