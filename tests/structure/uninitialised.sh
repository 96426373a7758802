#!/bin/sh
# uninitialised.sh SOURCE_DIR
#
# Nothing in the library decides by what nobody wrote: the stored inputs run with clang's memory
# sanitizer, where a planted fault of the kind is seen. It knows only what it has compiled itself.
# So the tools stay outside, whose exceptions are the C++ library's, and so does GoogleTest, which
# needs that library's streams.
compiler=clang++
command -v $compiler >/dev/null || { echo "Skipped: no $compiler"; exit 77; }
sources=$1
fuzz=$1/fuzz
room=$(mktemp -d) || exit
trap 'rm -rf "$room"' EXIT
targets=
for source in "$fuzz"/targets/*.cpp; do
    target=$(basename "$source" .cpp)
    case $target in ifagent | tqfetch | tqitems) ;; *) targets="$targets $target" ;; esac
done

# make SOURCE OBJECT
make() {
    $compiler -fsanitize=memory -fno-omit-frame-pointer -gline-tables-only -std=c++17 -pthread -w \
        -D_FILE_OFFSET_BITS=64 -include "$sources/tests/support/Instantiated.h" \
        -I"$sources/common" -I"$sources/comfort" -I"$sources/platform" -I"$fuzz" -c "$1" -o "$2"
}

# finish PROGRAM OBJECT...
finish() {
    program=$1
    shift
    $compiler -fsanitize=memory -pthread "$@" -ldl -o "$program"
}

mkdir "$room/objects"
for source in "$sources"/common/*.cpp "$fuzz/Fuzz.cpp"; do
    make "$source" "$room/objects/$(basename "$source" .cpp).o" || exit
done
for target in $targets; do echo "#include \"targets/$target.cpp\""; done >"$room/all.cpp"
echo '#include "replay.cpp"' >>"$room/all.cpp"
make "$room/all.cpp" "$room/objects/all.o" && finish "$room/replay" "$room"/objects/*.o || exit

cd "$room" || exit
failed=0
for target in $targets; do
    "$fuzz/replay.sh" "$target" "$room/replay" || { failed=1; echo "not so: $target"; }
done

"$fuzz/plant.sh" "$sources/common/TqNumber.cpp" \
    's/^TqNumber::TqNumber(int number) : value(number) {}/TqNumber::TqNumber(int) {}/' \
    "$room/TqNumber.cpp" &&
    make "$room/TqNumber.cpp" "$room/objects/TqNumber.o" &&
    finish "$room/faulty" "$room"/objects/*.o || exit
if "$fuzz/replay.sh" texts "$room/faulty" >"$room/seen" 2>&1 ||
    ! grep -q 'MemorySanitizer: use-of-uninitialized-value' "$room/seen"; then
    echo "NOT seen: a number that its constructor leaves as it is"
    failed=1
fi
exit $failed
