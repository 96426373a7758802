#!/bin/bash
# misuse.sh MISUSE EMULATOR...
#
# The development assertion says in words what was wrong, prints the calls that led there, and lets
# the program go on, or aborts it when it is told to.
program=$1
shift
room=$(mktemp -d) || exit
trap 'rm -rf "$room"' EXIT

fail() {
    echo "$1"
    cat "$room/errors"
    exit 1
}

# has PATTERN: a line of what was printed matches.
has() {
    grep -qE "$1" "$room/errors" || fail "no line like: $1"
}

printed=$("$@" "$program" 2>"$room/errors") || fail "does not end well"
[ "$printed" = 1 ] || fail "does not go on: $printed"
[ "$(sed -n 1p "$room/errors")" = \
    "check failed: TqBuffer::operator[]: \`index\` is not below \`length\`; the result is 0" ] ||
    fail "other words"
sed -n 2p "$room/errors" | grep -qE '^  \(TqBuffer, line [0-9]+\)$' || fail "no place"
# Where the linker may put the operation into its caller, it has no frame of its own.
has '^  ReadBehindTheEnd\(TqBuffer const&\)  misuse\+0x[0-9a-f]+$'
has '^  main  misuse\+0x[0-9a-f]+$'

ulimit -c 0
status=0
printed=$("$@" "$program" abort 2>"$room/errors") || status=$?
[ $status -ge 128 ] && [ -z "$printed" ] || fail "does not abort: $status $printed"
has '^check failed: TqBuffer::operator\[\]'
exit 0
