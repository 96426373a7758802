#!/bin/sh
# plant.sh SOURCE SCRIPT OUTPUT: the source, changed by a script of sed. It must change something.
sed "$2" "$1" >"$3" || exit
if cmp -s "$1" "$3"; then
    echo "$1: the fault to plant has no place any more: $2"
    rm -f "$3"
    exit 1
fi
