#!/bin/sh
# pages.sh programs PAGE...             prints the programs of the pages as C++ functions
# pages.sh compare PAGE PROGRAM...      runs what they are compiled to: prints what the page says
# pages.sh mistakes PAGE COMPILER FLAG... what the page says does not compile does not
task=$1

# The blocks ```cpp as functions that know their lines on the page; one with a main function is a
# program, in a namespace of its own. With "mistakes" in front the lines that do not compile are
# left in.
programs() {
    mistakes=
    if [ "$1" = mistakes ]; then mistakes=yes; shift; fi
    awk -v mistakes="$mistakes" '
        function close_block(    i, name) {
            name = page "_line" first
            gsub(/[^A-Za-z0-9_]/, "_", name)
            rows = rows "    {\"" page "\", " first ", " (hasMain ? name "::Run" : name) "},\n"
            for (i = 1; i <= count; ++i) if (line[i] ~ /^#include/) print line[i]
            print (hasMain ? "namespace " name " {" : "void " name "() {")
            print "#line " first + 1 " \"" page ".md\""
            for (i = 1; i <= count; ++i) {
                if (line[i] ~ /^#include/ || (!mistakes && line[i] ~ /\/\/ does not compile$/)) {
                    print "//"
                } else {
                    sub(/^int main\(\) \{$/, "void Run() {", line[i])
                    print line[i]
                }
            }
            print "}"
        }
        FNR == 1 { page = FILENAME; sub(/.*\//, "", page); sub(/\.md$/, "", page) }
        $0 == "```" && inside { inside = 0; close_block() }
        inside { line[++count] = $0; hasMain = hasMain || $0 == "int main() {" }
        $0 == "```cpp" { inside = 1; first = FNR; count = 0; hasMain = 0 }
        END { print "const Program programs[] = {\n" rows "};" }' "$@"
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
    "$@" "$(basename "$page" .md)" </dev/null >../printed || { echo "fails: $*"; exit 1; }
    diff -u ../said ../printed
}

mistakes() {
    command -v "$1" >/dev/null || { echo "Skipped: $1 is not installed"; exit 77; }
    make_room
    programs mistakes "$page" >"$room/pages_programs.h"
    failed=0
    LC_ALL=C "$@" -fsyntax-only -I"$room" "$(dirname "$0")/pages.cpp" 2>"$room/errors"
    for line in $(grep -n '// does not compile$' "$page" | cut -d: -f1); do
        grep -q "^$(basename "$page"):$line:.* error: " "$room/errors" && continue
        echo "compiles: $(sed -n "${line}p" "$page")"
        failed=1
    done
    exit $failed
}

shift
case $task in
    programs) programs "$@" ;;
    compare | mistakes)
        page=$1
        shift
        $task "$@"
        ;;
esac
