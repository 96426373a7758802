#!/bin/sh
# other_builds.sh SOURCES PLATFORM BUILD COMPILE EMULATOR "COMPILER FLAGS"...
#
# An application that was compiled once runs with every build of the library: it is compiled against
# the installed headers and run with the installed library and with libraries built otherwise, and
# prints the same each time.
sources=$1
platform=$2
build=$3
compile=$4
emulator=$5
shift 5
work=$(mktemp -d) || exit
trap 'rm -rf "$work"' EXIT

cmake --install "$build" --prefix "$work/installed" >/dev/null || exit
library=$(find "$work/installed" -name libtqcommon.so)
headers=$work/installed/include/tqcommon
# shellcheck disable=SC2086  # the command and its flags
$compile -std=c++11 -O1 -I"$headers" "$sources/tests/abi/application.cpp" "$library" \
    -o "$work/application" || exit

# run FOLDER: the application with the library that is in the folder.
run() {
    # shellcheck disable=SC2086
    case $emulator in
        *qemu-*) timeout 60 $emulator -E LD_LIBRARY_PATH="$1" "$work/application" ;;
        *) LD_LIBRARY_PATH="$1" timeout 60 $emulator "$work/application" ;;
    esac
}

run "$(dirname "$library")" >"$work/expected" || { cat "$work/expected"; exit 1; }
grep -q '^done$' "$work/expected" || { echo "the application did not get to its end"; exit 1; }

failed=0
number=0
for other; do
    if ! command -v "${other%% *}" >/dev/null; then
        echo "left out, no ${other%% *}: $other"
        continue
    fi
    number=$((number + 1))
    mkdir -p "$work/$number/objects"
    case $other in *-std=*) standard= ;; *) standard=-std=c++11 ;; esac
    # shellcheck disable=SC2086
    (cd "$work/$number/objects" &&
        printf '%s\n' "$sources"/common/*.cpp | xargs -P "$(nproc)" -n 8 $other $standard -c \
            -fpic -fno-exceptions -fvisibility=hidden -fvisibility-inlines-hidden \
            -I"$sources/common" -I"$platform") &&
        $other -shared -Wl,-soname,libtqcommon.so.1 -o "$work/$number/libtqcommon.so.1" \
            "$work/$number"/objects/*.o -Wl,--version-script="$sources/cmake/tqcommon.map" || exit
    if run "$work/$number" >"$work/got" && cmp -s "$work/expected" "$work/got"; then
        echo "same: $other"
    else
        echo "differs: $other"
        diff "$work/expected" "$work/got"
        failed=1
    fi
done
exit $failed
