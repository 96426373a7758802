#!/bin/sh
# live_notices.sh COMMAND...
# Succeeds when live.sh fails for each of these changes to what the command prints, and for a
# command that prints nothing.
here=$(cd "$(dirname "$0")" && pwd)
room=$(mktemp -d)
trap 'rm -rf "$room"' EXIT

# unnoticed EXPRESSION COMMAND...: the command's output changed by sed.
unnoticed() {
    # shellcheck disable=SC2016  # the inner shell's
    "$here/live.sh" sh -c 'expression=$1; shift; "$@" | sed "$expression"' sh "$@" >"$room/log" 2>&1
}

if "$here/live.sh" true >"$room/log" 2>&1; then
    echo "not noticed: nothing printed"
    exit 1
fi
while read -r expression; do
    if unnoticed "$expression" "$@"; then
        printf 'not noticed: %s\n' "$expression"
        exit 1
    fi
done <<'END'
/^lo /d
s/^lo /ol /
s/^\(lo  *\)[0-9][0-9]*/\199/
s/^\(lo .* \)[0-9][0-9]*$/\14000000000/
/^poll 2/s/ at 20/ at 19/
/^that time/s/0126/2026/
s/^  *\([0-9]*  00002lo\)/     9\1/
s/ values in / values in 1/
s/[0-9]* equal$/1 equal/
s/^[0-9]* changes/99 changes/
/changes in/d
END
