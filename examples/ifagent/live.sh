#!/bin/sh
# live.sh COMMAND...
# Succeeds when the command, ifagent with two polls and --items, shows of this machine's interfaces
# what the kernel says: their names and indices, counters between those just before and just after,
# the time, every item at its place, and each change between the two polls.
export LC_ALL=C
here=$(cd "$(dirname "$0")" && pwd)
room=$(mktemp -d)
trap 'rm -rf "$room"' EXIT

names() {
    sed -n 's/^ *\([^ |]*\):.*/\1/p' "$1" | sort
}

# Interfaces come and go on a machine that does other things too: then it is tried again.
for try in 1 2 3 4 5; do
    cat /proc/net/dev >"$room/before"
    date -u '+%Y-%m-%d %H:%M:%S' >"$room/start"
    "$@" >"$room/output" 2>"$room/complaints"
    status=$?
    date -u '+%Y-%m-%d %H:%M:%S' >"$room/end"
    cat /proc/net/dev >"$room/after"
    [ "$(names "$room/before")" != "$(names "$room/after")" ] || break
    echo "try $try: the interfaces have changed meanwhile"
done

names "$room/before" | while read -r name; do
    echo "$name $(cat "/sys/class/net/$name/ifindex" 2>/dev/null)"
done >"$room/indices"

awk -v start="$(cat "$room/start")" -v end="$(cat "$room/end")" -f "$here/live.awk" \
    "$room/before" "$room/after" "$room/indices" "$room/output" && [ ! -s "$room/complaints" ] &&
    [ $status -eq 0 ] && exit
cat "$room/output" "$room/complaints"
echo "exit status $status"
exit 1
