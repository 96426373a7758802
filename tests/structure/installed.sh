#!/bin/sh
# installed.sh BUILD_DIR EMULATOR...
# with $CMAKE, $GENERATOR, $COMPILER, $LINK_FLAGS and $TOOLCHAIN of the build in the environment
#
# The installed package serves a program that has nothing else: found by CMake and by pkg-config,
# moved to another place after the installation, with public headers only.
build=$1
shift

here=$(cd "$(dirname "$0")" && pwd)
room=$(mktemp -d)
trap 'rm -rf "$room"' EXIT
prefix=$room/moved

fail() {
    echo "$1"
    exit 1
}

expect_42() {
    printed=$("$@") || fail "does not run: $*"
    [ "$printed" = 42 ] || fail "prints '$printed': $*"
}

"$CMAKE" --install "$build" --prefix "$room/prefix" >"$room/log" || fail "$(cat "$room/log")"
mv "$room/prefix" "$prefix"

public=$(cd "$here/../../common" && ls ./*.h && cd ../comfort && ls ./*.h)
for header in $public; do
    [ -e "$prefix/include/tqcommon/$header" ] || fail "$header is not installed"
done
[ ! -e "$prefix/include/tqcommon/internal" ] || fail "internal headers are installed"
[ -e "$prefix/include/tqcommon/TqLinuxMutex.h" ] || fail "no platform header is installed"

"$CMAKE" -S "$here/stranger" -B "$room/build" -G "$GENERATOR" -DCMAKE_PREFIX_PATH="$prefix" \
    -DCMAKE_CXX_COMPILER="$COMPILER" -DCMAKE_TOOLCHAIN_FILE="$TOOLCHAIN" >"$room/log" 2>&1 ||
    fail "$(cat "$room/log")"
"$CMAKE" --build "$room/build" >"$room/log" 2>&1 || fail "$(cat "$room/log")"
expect_42 "$@" "$room/build/stranger"
expect_42 "$@" "$room/build/comfortable"

if [ -d "$build/tools" ]; then
    for tool in tqfetch tqitems; do
        "$@" "$prefix/bin/$tool" --help | grep -q "^usage: $tool " || fail "$tool does not run"
        for file in "man/man1/$tool.1" "bash-completion/completions/$tool" \
            "zsh/site-functions/_$tool" "fish/vendor_completions.d/$tool.fish"; do
            [ -e "$prefix/share/$file" ] || fail "$tool has no $file"
        done
    done
fi

if ! command -v pkg-config >/dev/null; then
    echo "Skipped: pkg-config is not installed"
    exit 77
fi
package=$(dirname "$(find "$prefix" -name tqcommon.pc)")

# by_pkg_config PACKAGE SOURCE
by_pkg_config() {
    flags=$(PKG_CONFIG_PATH=$package pkg-config --cflags --libs "$1") || fail "no package $1"
    # shellcheck disable=SC2086  # flags are words
    "$COMPILER" "$here/stranger/$2" -o "$room/stranger" $flags $LINK_FLAGS \
        "-Wl,-rpath,$(PKG_CONFIG_PATH=$package pkg-config --variable=libdir "$1")" ||
        fail "does not compile with $flags"
}

by_pkg_config tqcommon main.cpp
expect_42 "$@" "$room/stranger"
by_pkg_config tqcomfort comfortable.cpp
expect_42 "$@" "$room/stranger"
