#!/bin/bash
# preload.sh TQREPORTS LIBRARIES UNAWARE MISUSE EMULATOR...
#
# The preloaded library turns the development assertion on in a program that knows nothing of it,
# beside a hook of the program's own, and once only where the program has it already. LIBRARIES are
# the folders of the shared libraries, with colons between them.
reports=$1
libraries=$2
unaware=$3
misuse=$4
shift 4
room=$(mktemp -d) || exit
trap 'rm -rf "$room"' EXIT

fail() {
    echo "$1"
    cat "$room/printed" "$room/errors"
    exit 1
}

# run [NAME=VALUE] PROGRAM WORD...: an emulator has the settings for the program alone.
run() {
    local settings=("LD_PRELOAD=$reports" "LD_LIBRARY_PATH=$libraries") setting
    case $1 in
        *=*) settings+=("$1") && shift ;;
    esac
    local command=(env "${settings[@]}")
    if [ ${#emulator[@]} -gt 0 ]; then
        command=("${emulator[@]}")
        for setting in "${settings[@]}"; do command+=(-E "$setting"); done
    fi
    status=0
    "${command[@]}" "$@" >"$room/printed" 2>"$room/errors" || status=$?
}

emulator=("$@")
# shellcheck disable=SC2016  # a name, not a command
first='check failed: TqBuffer::operator[]: `index` is not below `length`; the result is 0'

run "$unaware"
[ $status = 0 ] && [ "$(cat "$room/printed")" = 1 ] || fail "the program does not go on"
[ "$(head -n 1 "$room/errors")" = "$first" ] || fail "no report"
grep -qE '^  main  unaware\+0x' "$room/errors" || fail "no calls"

run "$unaware" own
[ $status = 0 ] || fail "the program misses its own hook"
[ "$(head -n 1 "$room/printed")" = 'own hook: TqBuffer' ] || fail "its own hook is not called"
[ "$(head -n 1 "$room/errors")" = "$first" ] || fail "no report beside its own hook"

run "$misuse"
[ $status = 0 ] || fail "does not go with the installed one"
[ "$(grep -c '^check failed' "$room/errors")" = 1 ] || fail "reported more than once"

ulimit -c 0
run TQ_REPORTS=abort "$unaware"
[ $status -ge 128 ] && [ ! -s "$room/printed" ] || fail "does not abort: $status"
exit 0
