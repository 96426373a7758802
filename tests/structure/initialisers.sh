#!/bin/sh
# initialisers.sh READELF LIBRARY OBJECT...
#
# The library's static data is constant-initialised: it works in an application's own static
# constructors, and loading it runs no code of its own. No object has an initialiser section, and
# the shared library has the one entry that the toolchain's start-up file brings along.
export LC_ALL=C
readelf=$1
library=$2
shift 2
failed=0

[ $# -gt 0 ] || { echo "no objects given"; exit 1; }
for object; do
    sections=$("$readelf" -SW "$object")
    case $sections in
        *' .text '*) ;;
        *) echo "$object has no code, says $readelf"; failed=1 ;;
    esac
    found=$(echo "$sections" | grep -oE '\.(preinit_array|init_array|ctors)[.0-9]*' | sort -u)
    if [ -n "$found" ]; then
        echo "$object has:"
        echo "$found"
        failed=1
    fi
done

case $("$readelf" -hW "$library" | sed -n 's/ *Class: *//p') in
    ELF64) pointer=8 ;;
    ELF32) pointer=4 ;;
    *) echo "$library: no ELF class"; exit 1 ;;
esac
size=$("$readelf" -dW "$library" | sed -n 's/.*(INIT_ARRAYSZ) *\([0-9]*\) .*/\1/p')
if [ "${size:-0}" -gt $pointer ]; then
    echo "$library has $size bytes of initialisers; the toolchain's own take $pointer"
    failed=1
fi
exit $failed
