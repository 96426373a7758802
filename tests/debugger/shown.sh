#!/bin/sh
# shown.sh PROGRAM SCRIPT
#
# The debugger, with the script that comes with the library, shows values as they are meant.
command -v gdb >/dev/null || { echo "Skipped: no gdb"; exit 77; }

shown=$(timeout 120 gdb -batch -nx -ex "source $2" -ex 'break LookHere' -ex run -ex up \
    -ex 'print name' -ex 'print number' -ex 'print counter' -ex 'print flag' -ex 'print buffer' \
    -ex 'print handle' -ex 'print nobody' -ex 'print list' -ex 'print descriptor' \
    -ex 'print handle.object->refCount' -ex 'print list.count' "$1" 2>&1)
failed=0
expect() {
    echo "$shown" | grep -qE '^\$[0-9]+ = '"$1"'$' || { echo "not shown: $1"; failed=1; }
}
expect '"GigabitEthernet0/1 to the north west"'
expect '-42'
expect '3000000000'
expect 'True'
expect 'TqBuffer of 8, read to 0: \\x070003-42'
expect 'handle on a TqBaseObject, 2 references'
expect 'empty handle'
expect 'TqRefList<TqBaseObject> of 1 \(capacity 16, 1 walks\) = \{0x[0-9a-f]+\}'
expect '(@0x[0-9a-f]+: )?class TqCallback : TqBaseObject'
expect '2'
expect '1'
[ $failed = 0 ] || echo "$shown"
exit $failed
