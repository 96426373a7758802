#!/bin/sh
# recorded.sh SOURCE_DIR BUILD_DIR
#
# What the manual's pictures are drawn from can be recorded anew, and tells the same story: the text
# of a value on its way, an object from its name to its end, mutexes inside each other in the one
# order, and a download that survives two lost packets. Not call by call: compilers inline.
case $(uname -m) in x86_64) ;; *) echo "Skipped: the recorder knows x86-64 only"; exit 77 ;; esac
for tool in gdb python3; do
    command -v $tool >/dev/null || { echo "Skipped: $tool is not installed"; exit 77; }
done
if ! unshare --net --map-root-user true 2>/dev/null; then
    echo "Skipped: no network namespace of its own"
    exit 77
fi
room=$(mktemp -d) || exit
trap 'rm -rf "$room"' EXIT
"$1/tools/manual/record" "$room" "$2" || exit
status=0

expect() {
    grep -qF "$2" "$room/$1.txt" && return
    echo "$1.txt has no: $2"
    status=1
}

expect value 'TqNumber sent|ToBuffer|'
expect value 'TqBuffer packet|Append|"42"'
expect value 'TqNumber received|FromBuffer|'
expect object 'TqClassRegistry registry|NewObject|"Monitor"'
expect object 'TqRef handle|AssignNewObject|'
expect object '|~Monitor|'
expect download '0|client|read request|lost'
expect download '|server|block 1, 512 bytes|'
expect download '|client|acknowledgement 1|lost'
expect download '|server|block 2, 188 bytes|'

# No mutex is taken while an object's is held, and an object's only inside another.
awk '
    $1 == "lock" && held ~ /objectMutex/ { print "taken inside an object'\''s: " $0; failed = 1 }
    $1 == "lock" && $2 == "objectMutex" && held == "" { print "taken alone: " $0; failed = 1 }
    $1 == "lock" { held = held " " $2; ++count }
    $1 == "unlock" { sub(" " $2 "$", "", held) }
    END { exit failed || count < 8 || held != "" }' "$room/locks.txt" || { echo "locks.txt"; status=1; }
exit $status
