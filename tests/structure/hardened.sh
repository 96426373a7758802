#!/bin/sh
# hardened.sh READELF OPTIMISED FILE...
#
# What is shipped is position-independent, has nothing to write to or to execute that need not be,
# and checks its stack and, where it is OPTIMISED (ON), the C library's calls.
export LC_ALL=C
readelf=$1
optimised=$2
shift 2
failed=0

# expect FILE WHAT OPTION PATTERN: the pattern is found in what readelf prints with the option.
expect() {
    "$readelf" -W "$3" "$1" | grep -qE "$4" && return
    echo "$1: $2"
    failed=1
}

fortified=0
for file; do
    expect "$file" "not position-independent" -h 'Type: +DYN'
    expect "$file" "no read-only relocations" -l 'GNU_RELRO'
    expect "$file" "symbols are bound late" -d 'BIND_NOW|Flags: .*NOW'
    expect "$file" "an executable stack" -l 'GNU_STACK .* RW '
    expect "$file" "no stack protector" --dyn-syms '__stack_chk_(fail|guard)'
    case $file in
        *.so*) ;;
        *) expect "$file" "not a position-independent program" -d 'FLAGS_1.* PIE' ;;
    esac
    "$readelf" -W --dyn-syms "$file" | grep -q '_chk@' && fortified=$((fortified + 1))
done
if [ "$optimised" = ON ] && [ $fortified -eq 0 ]; then
    echo "the C library checks no call of any of them"
    failed=1
fi
exit $failed
