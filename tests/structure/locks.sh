#!/bin/sh
# locks.sh SOURCE_DIR
#
# clang takes it for an error when a source of the library forgets a lock, or to give it back.
sources=$1
compiler=clang++
command -v $compiler >/dev/null || { echo "Skipped: $compiler is not installed"; exit 77; }
room=$(mktemp -d) || exit
trap 'rm -rf "$room"' EXIT
cp -r "$sources/common" "$room"
failed=0

compile() {
    $compiler -std=c++11 -fsyntax-only -DTQ_CHECKS_LOCKS -Wthread-safety -Werror=thread-safety \
        -I"$sources/platform" "$room/common/$1" >"$room/errors" 2>&1
}

# expect_error FILE CHANGE: a mistake that sed makes in a source or its header is an error.
expect_error() {
    sed "$2" "$sources/common/$1" >"$room/common/$1"
    if cmp -s "$sources/common/$1" "$room/common/$1"; then
        echo "NOT there to be changed in $1: $2"
        failed=1
    elif compile "${1%.*}.cpp" || ! grep -q '\[-Werror,-Wthread-safety' "$room/errors"; then
        echo "NOT an error in $1: $2"
        cat "$room/errors"
        failed=1
    fi
    cp "$sources/common/$1" "$room/common/$1"
}

for source in TqBaseObject TqBaseRef TqBaseRefList TqClassRegistry; do
    compile $source.cpp && continue
    echo "NOT without an error: $source"
    cat "$room/errors"
    failed=1
done
expect_error TqBaseObject.h '/TqBaseObject::IncrementRefCount(/,/^}/s/.*Mutex.Lock().*//'
expect_error TqBaseObject.h '/TqBaseObject::DecrementRefCount(/,/^}/s/.*Unlock.*//'
expect_error TqBaseRef.cpp '/::AssignNewObject(/,/^}/s/.*Unlock.*//'
expect_error TqBaseRef.cpp '/::AssignNewObject(/,/^}/s/Unlock/Lock/'
expect_error TqBaseRefList.cpp '/::InsertSlot(/,/^}/s/ Unlock(\*this);//'
expect_error TqBaseRefList.cpp '/::RemoveAllItems(/,/^}/s/ Lock(\*this);//'
exit $failed
