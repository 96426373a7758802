#!/bin/sh
# surprises.sh programs PAGE                  prints the programs of the page as C++ functions
# surprises.sh compare PAGE PROGRAM...        runs what they are compiled to: prints what the page says
# surprises.sh mistakes PAGE COMPILER FLAG... what the page says does not compile does not
task=$1
page=$2
shift 2

# The blocks ```cpp as functions that know their lines on the page. With "mistakes" as argument the
# lines that do not compile are left in.
programs() {
    awk -v mistakes="$1" '
        $0 == "```" && inside { inside = 0; print "}" }
        inside && !mistakes && /\/\/ does not compile$/ { print "//"; next }
        inside
        $0 == "```cpp" {
            inside = 1
            lines = lines "    {" NR ", Line" NR "},\n"
            print "void Line" NR "() {\n#line " NR + 1 " \"surprises.md\""
        }
        END { print "const Program programs[] = {\n" lines "};" }' "$page"
}

# What the page says they print, as the program does. A block without one prints nothing.
said() {
    awk '$0 == "```" { inside = 0 }
        inside
        $0 == "```cpp" { print "line " NR ":" }
        $0 == "```text" { inside = 1 }' "$page"
}

make_room() {
    room=$(mktemp -d) || exit
    trap 'rm -rf "$room"' EXIT
}

compare() {
    make_room
    said >"$room/said"
    mkdir "$room/folder"
    cd "$room/folder" || exit
    printf 'one\ntwo\n' >lines.txt
    printf '%2000s\n' x >long.txt
    "$@" </dev/null >../printed || { echo "fails: $*"; exit 1; }
    diff -u ../said ../printed
}

mistakes() {
    command -v "$1" >/dev/null || { echo "Skipped: $1 is not installed"; exit 77; }
    make_room
    programs mistakes >"$room/surprises_programs.h"
    failed=0
    LC_ALL=C "$@" -fsyntax-only -I"$room" "$(dirname "$0")/surprises.cpp" 2>"$room/errors"
    for line in $(grep -n '// does not compile$' "$page" | cut -d: -f1); do
        grep -q "^surprises.md:$line:.* error: " "$room/errors" && continue
        echo "compiles: $(sed -n "${line}p" "$page")"
        failed=1
    done
    exit $failed
}

case $task in
    programs) programs ;;
    compare) compare "$@" ;;
    mistakes) mistakes "$@" ;;
esac
