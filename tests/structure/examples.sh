#!/bin/sh
# examples.sh SOURCE_DIR
#
# Every line of an example in a public header stands in examples.cpp, which is compiled and run. Not
# here: the client's program (tftp_example.sh), and the development assertion (misuse.sh, preload.sh).
sources=$1
status=0
for header in "$sources"/common/*.h "$sources"/comfort/*.h; do
    case $header in
        */TqTftp.h | */TqDevelopmentAssert.h) continue ;;
    esac
    awk '/^ *\/\/\/     / { sub(/^ *\/\/\/ +/, ""); print }' "$header" |
        grep -vE '^(\.\.\.|public:|#include "Tq.*"|// (Monitor\.(h|cpp)|at start-up|from then on))$' |
        awk -v header="$(basename "$header")" '
            { gsub(/ +/, " ") }
            FILENAME != "-" { sub(/^ ?(\/\/ )?/, ""); there[$0] = 1; next }
            !($0 in there) { print header ": " $0; missing = 1 }
            END { exit missing }' "$sources/tests/structure/examples.cpp" - || status=1
done
exit $status
