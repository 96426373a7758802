#!/bin/sh
# readme.sh SOURCE_DIR
#
# The README's lines install the library on a machine that has the packages it names and nothing
# else, and build its program in each of the ways it shows.
#
# That machine is a root directory of the test's own, in a mount namespace: this machine's programs
# without anything of GoogleTest and without /usr/local.
source=$1
readme=$source/README.md

# blocks LANGUAGE: the code of the README in that language. Every line of shell there is meant.
blocks() {
    awk -v start="\`\`\`$1" '$0 == "```" { inside = 0 } inside; $0 == start { inside = 1 }' "$readme"
}

# From the clone to a program of one's own: the packages and every line of shell.
commands() {
    grep '^    apt-get install ' "$readme"
    blocks sh
}

# What is done inside, in a copy of the sources.
steps() {
    echo 'fail() { echo "$1"; exit 1; }'
    echo 'set -e; cd /clone; readme() {'
    blocks sh | sed '/^g++ /,$d'
    echo '}; readme >/log 2>&1 || { cat /log; exit 1; }'
    echo 'grep -q "^CMAKE_BUILD_TYPE:STRING=Release$" build/install/CMakeCache.txt || fail "no release"'
    echo 'cd /program'
    blocks sh | grep '^g++ '
    echo '[ "$(./answer)" = 42 ] || fail "not 42 by g++"'
    echo '[ "$(LD_PRELOAD=libtqreports.so ./answer 2>&1)" = 42 ] || fail "is not preloaded"'
    echo 'cmake -B by-cmake . >/log && cmake --build by-cmake >/log'
    echo '[ "$(by-cmake/answer)" = 42 ] || fail "not 42 by CMake"'
    echo 'command -v meson >/dev/null || { echo "Skipped: meson is not installed"; exit 77; }'
    echo 'command -v ninja >/dev/null || { echo "Skipped: meson is not installed"; exit 77; }'
    echo 'meson setup by-meson >/log && meson compile -C by-meson >/log || { cat /log; exit 1; }'
    echo '[ "$(by-meson/answer)" = 42 ] || fail "not 42 by Meson"'
}

# Everything that is mounted here is gone with the namespace.
make_root() {
    mount -t tmpfs none "$root" || return
    cd "$root" || return
    mkdir -p usr etc tmp proc dev root var/cache/ldconfig clone program
    mount --rbind /usr usr && mount -t tmpfs none usr/local || return
    for hidden in usr/src usr/include/gtest usr/include/gmock; do
        [ ! -d "$hidden" ] || mount -t tmpfs none "$hidden" || return
    done
    for folder in bin sbin lib lib32 lib64 libx32; do
        if [ -L "/$folder" ]; then cp -P "/$folder" .; fi
        if [ ! -L "/$folder" ] && [ -d "/$folder" ]; then
            mkdir "$folder" && mount --rbind "/$folder" "$folder" || return
        fi
    done
    for file in debian_version ld.so.conf ld.so.conf.d alternatives; do
        [ ! -e "/etc/$file" ] || cp -r "/etc/$file" etc/ || return
    done
    : >dev/null
    mount --bind /dev/null dev/null && mount --rbind /proc proc || return
    (cd "$source" && tar -c --exclude=./build --exclude=./.git .) | tar -x -C clone || return
    blocks cpp >program/answer.cpp
    blocks cmake >program/CMakeLists.txt
    blocks meson >program/meson.build
    steps >steps
}

if [ "$2" = inside ]; then
    root=$3
    make_root || { echo "no root directory of its own"; exit 1; }
    unset CMAKE_CXX_COMPILER_LAUNCHER CMAKE_GENERATOR CXX CXXFLAGS LDFLAGS DESTDIR PKG_CONFIG_PATH
    PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C \
        exec chroot . /bin/sh /steps
fi

[ "$(commands | wc -l)" -le 5 ] || { echo "more than five commands:"; commands; exit 1; }

own='unshare --mount'
[ "$(id -u)" = 0 ] || own='unshare --mount --map-root-user'
if ! $own true 2>/dev/null; then
    echo "Skipped: no mount namespace of its own"
    exit 77
fi
root=$(mktemp -d)
trap 'rmdir "$root"' EXIT
$own sh "$0" "$source" inside "$root"
