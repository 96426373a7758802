#!/bin/sh
# instructions.sh SOURCE_DIR COMPILER FLAG...
#
# What the typed handles and lists offer costs nothing: each function of instructions.cpp has not one
# instruction more than its form by hand.
sources=$1
compiler=$2
shift 2
program=$sources/tests/structure/instructions.cpp
room=$(mktemp -d) || exit
trap 'rm -rf "$room"' EXIT

line=$(awk '/TqCallAssert\(/ { print FNR }' "$sources/common/TqListItems.h")

# assemble FORM FLAG...
assemble() {
    form=$1
    shift
    "$compiler" "$@" -g0 -S -std=c++11 -DREPORT_LINE="$line" -I"$sources/common" \
        -I"$sources/platform" "$program" -o "$room/$form" || exit 1
}

# body FORM FUNCTION: its instructions, without labels and directives.
body() {
    awk -v name="$2" '
        $1 == name ":" { isInside = 1; next }
        !isInside { next }
        $1 == ".size" { exit }
        $1 ~ /^[.#]/ || $1 ~ /:$/ || NF == 0 { next }
        { print }' "$room/$1"
}

# gcc would compile one function as a jump to an equal one.
case $compiler in
    *clang*) ;;
    *) set -- "$@" -fno-ipa-icf ;;
esac
assemble by_hand "$@" -DBY_HAND
assemble comfort "$@"

failed=0
functions=$(sed -n 's/^[A-Za-z*]* \([A-Z][A-Za-z]*\)(.*) {$/\1/p' "$program")
[ -n "$functions" ] || { echo "no functions in $program"; exit 1; }
for function in $functions; do
    body by_hand "$function" >"$room/plain"
    body comfort "$function" >"$room/short"
    plain=$(wc -l <"$room/plain")
    short=$(wc -l <"$room/short")
    told="$function: $short instructions, $plain by hand"
    if [ "$short" -eq 0 ] || [ "$short" -gt "$plain" ]; then
        echo "FAILED: $told"
        diff "$room/plain" "$room/short"
        failed=1
    elif cmp -s "$room/plain" "$room/short"; then
        echo "$told, the same ones"
    else
        echo "$told"
    fi
done
exit $failed
