#!/bin/sh
# breaks_are_found.sh SOURCES COMPILER
#
# Shows that the comparison of interfaces works: in copies of the library a field is moved, a
# virtual operation added, a plain one added and one taken away, and each is told for what it is.
for tool in abidiff python3; do
    command -v $tool >/dev/null || { echo "Skipped: no $tool"; exit 77; }
done
sources=$1
compiler=$2
work=$(mktemp -d) || exit
trap 'rm -rf "$work"' EXIT
failed=0

# library NAME: builds the copy of that name.
library() {
    mkdir "$work/$1/objects" || exit
    (cd "$work/$1/objects" &&
        printf '%s\n' ../common/*.cpp | xargs -P "$(nproc)" -n 8 "$compiler" -c -g -O0 -fpic \
            -std=c++11 -fno-exceptions -fvisibility=hidden -fvisibility-inlines-hidden \
            -I../common -I../platform) &&
        "$compiler" -shared -Wl,-soname,libtqcommon.so.1 -o "$work/$1.so" "$work/$1"/objects/*.o \
            -Wl,--version-script="$sources/cmake/tqcommon.map" || exit
}

# change NAME FILE EXPRESSION: a copy with one change by sed, built.
change() {
    mkdir "$work/$1"
    cp -r "$sources/common" "$sources/platform" "$work/$1"
    if [ -n "$2" ]; then
        sed -i "$3" "$work/$1/common/$2"
        cmp -s "$sources/common/$2" "$work/$1/common/$2" && { echo "$1: nothing changed"; exit 1; }
    fi
    library "$1"
}

# expect NAME WORD: the comparison of the copy fails and says the word.
expect() {
    if "$sources/scripts/abi" compare "$work/same.so" "$work/$1.so" >"$work/report"; then
        echo "$1: not found"
        failed=1
    elif ! grep -q "$2" "$work/report"; then
        echo "$1: found, but not as '$2':"
        cat "$work/report"
        failed=1
    else
        echo "$1: found as '$2'"
    fi
}

change same '' ''
change again '' ''
"$sources/scripts/abi" compare "$work/same.so" "$work/again.so" || failed=1

change field-moved TqNumber.h 's/^    int value;/    int spare; int value;/'
expect field-moved INCOMPATIBLE
change virtual-added TqBaseList.h 's/^    virtual void RemoveAllItems();/    virtual int Fresh() { return 0; }\n&/'
expect virtual-added INCOMPATIBLE
change operation-gone TqHooks.h 's/^TQ_API TqAssertCb TqUnRegisterAssertCb/TqAssertCb TqUnRegisterAssertCb/'
expect operation-gone INCOMPATIBLE
change operation-added TqHooks.h 's/^TQ_API .*TqCallAssert(/TQ_API __attribute__((used)) inline int TqFresh() { return 0; }\n&/'
expect operation-added '^Compatible'
exit $failed
