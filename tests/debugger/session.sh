#!/bin/bash
# session.sh live|core|page|stripped BUILD PROGRAM
# session.sh emulated|emulated_core BUILD PROGRAM EMULATOR -L SYSROOT
# with $CMAKE in the environment
#
# gdb, with nothing but the library as it is installed, shows what the program says that it should:
# of the running program at each stop, or of a core file from the last one; or what the page
# docs/debugging.md has it say.
way=$1
build=$2
program=$3
emulator=("${@:4}")
here=$(cd "$(dirname "$0")" && pwd)
tools=$here/../../tools

gdb=gdb
[ ${#emulator[@]} -eq 0 ] || gdb="gdb-multiarch"
if ! command -v $gdb >/dev/null || ! $gdb -batch -nx -ex 'python print(1)' >/dev/null 2>&1; then
    echo "Skipped: no $gdb that has Python"
    exit 77
fi

fail() {
    echo "$1"
    [ ! -e "$room/said" ] || cat "$room/said"
    exit 1
}

room=$(mktemp -d)
room=$(cd "$room" && pwd -P)
process=
tidy_up() {
    [ -z "$process" ] || kill "$process" 2>/dev/null
    rm -rf "$room"
}
trap tidy_up EXIT
"$CMAKE" --install "$build" --prefix "$room/prefix" >"$room/said" 2>&1 || fail "not installed"
libraries=$(dirname "$(find "$room/prefix" -name 'libtqcommon.so.?')")
scripts=$room/prefix/share/gdb/auto-load

# ask COMMAND...: what gdb answers to commands after it has found the program.
ask() {
    local arguments=() command
    for command; do arguments+=(-ex "$command"); done
    timeout 150 "$gdb" -batch -nx \
        -iex "add-auto-load-scripts-directory $scripts" -iex "add-auto-load-safe-path $scripts" \
        -iex 'set width 0' -iex 'set debuginfod enabled off' \
        -ex "source $here/session.py" "${arguments[@]}" "$program" >>"$room/said" 2>&1
}

# Where the emulator's libraries are, and the installed one.
places=("set sysroot ${emulator[2]}" "set solib-search-path $libraries")

# emulate ARGUMENT...: the program with its arguments, and the emulator's own in front.
emulate() {
    timeout 150 "$tools/loopback/in_own_network.sh" "${emulator[@]}" \
        -E LD_LIBRARY_PATH="$libraries" "$@" >"$room/emulated" 2>&1
}

live() {
    ask "set environment LD_LIBRARY_PATH $libraries" "set args $room" \
        "python ask_at_each_stop('$room', 'run')"
}

core() {
    ask "set environment LD_LIBRARY_PATH $libraries" "set args $room abort" run \
        "generate-core-file $room/core"
    : >"$room/said"
    ask "core-file $room/core" "python ask_of_last_stop('$room')"
}

emulated() {
    emulate -g "$room/socket" "$program" "$room" &
    process=$!
    local tries=0
    until [ -S "$room/socket" ]; do
        [ $((tries += 1)) -le 600 ] || fail "the emulator does not listen"
        sleep 0.1
    done
    ask "${places[@]}" "target remote $room/socket" "python ask_at_each_stop('$room', 'continue')"
    wait $process
    process=
}

emulated_core() {
    (ulimit -c unlimited && cd "$room" && emulate "$program" "$room" abort) 2>/dev/null
    python3 "$tools/gdb/readable_core.py" "$room"/qemu_*.core "$room/core" ||
        fail "no core file: $(cat "$room/emulated")"
    ask "${places[@]}" "core-file $room/core" "python ask_of_last_stop('$room')"
}

page() {
    ask "set environment LD_LIBRARY_PATH $libraries" "source $here/page.py" \
        "python check('$here/../../docs/debugging.md', '$here/../../common/*.h')"
    grep -q '^0 faults' "$room/said" || fail "the page, or the script, is not complete"
    exit
}

# Without the library's debug information nothing is known of its objects, and that is said.
stripped() {
    strip --strip-debug "$libraries"/libtqcommon.so.?.?.? || fail "not stripped"
    ask "set environment LD_LIBRARY_PATH $libraries" 'break Polled' run up \
        "python answer('output stored')" "python answer('output ports', 'TqRefList<Port> of')" \
        "python answer('tq classes')" "python answer('tq locks')"
    missing="| The library, or its debug information, is not there."
    printf '%s\n' '> output stored' '| <incomplete type>' '> output ports' \
        '> tq classes' "$missing" '> tq locks' "$missing" >"$room/expected.1"
}

$way
case $way in
    *core) stops=$(ls -v "$room"/expected.* | tail -n 1) ;;
    *) stops=$(ls -v "$room"/expected.*) ;;
esac
# shellcheck disable=SC2086  # one word a stop
cat $stops >"$room/expected" || fail "nothing was expected"
grep '^[|>]' "$room/said" >"$room/answered"
diff "$room/expected" "$room/answered" || fail "'>' is what gdb answered"
! grep -E 'Python Exception|Traceback' "$room/said" || fail "the script failed"
echo "$(wc -l <"$room/answered") lines as expected"
