#!/bin/sh
# walk_many.sh COUNT STEP COMMAND...
# Succeeds when the command, ifagent --pass-persist, answers from a file of COUNT interfaces every
# STEPth get-next of a walk with the cell that follows, and the last one with none. What it has to
# answer is worked out from the file alone.
export LC_ALL=C
here=$(cd "$(dirname "$0")" && pwd)
count=$1
step=$2
shift 2
room=$(mktemp -d)
trap 'rm -rf "$room"' EXIT

awk -f "$here/many.awk" "$count" >"$room/many.txt"
awk -v step="$step" -v requests="$room/requests" -v answers="$room/answers" '
    function next_is(text) {
        if (++calls % step == 0 || text == "NONE") {
            print "getnext\n" asked >requests
            print text >answers
        }
        asked = text
        sub(/\n.*/, "", asked)
    }
    {
        sub(/:/, " ")
        cells[1, NR] = "integer\n" NR
        cells[2, NR] = "string\n" $1
        cells[8, NR] = "integer\n4"
        cells[11, NR] = "counter\n" modulo($3 > $9 ? $3 - $9 : 0)
        split("10 2 12 9 13 5 14 4 16 10 17 11 19 13 20 12", fields)
        for (i = 1; i in fields; i += 2) {
            cells[fields[i], NR] = "counter\n" modulo($fields[i + 1])
        }
    }
    function modulo(number) { return sprintf("%.0f", number % 4294967296) }
    END {
        asked = ".1.3.6.1.2.1.2.2"
        split("1 2 8 10 11 12 13 14 16 17 19 20", columns)
        for (c = 1; c <= 12; ++c) {
            for (i = 1; i <= NR; ++i) {
                next_is(".1.3.6.1.2.1.2.2.1." columns[c] "." i "\n" cells[columns[c], i])
            }
        }
        next_is("NONE")
    }' "$room/many.txt"

"$@" "$room/many.txt" <"$room/requests" >"$room/output" 2>&1
status=$?
[ $status -eq 0 ] && cmp "$room/answers" "$room/output" && exit
diff "$room/answers" "$room/output" | head -n 20
echo "exit status $status"
exit 1
