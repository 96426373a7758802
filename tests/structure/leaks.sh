#!/bin/sh
# leaks.sh COMPILER TEST FLAG...
#
# The tests of lost objects are there whenever the compiler's address sanitizer is.
compiler=$1
test=$2
shift 2
command -v "$compiler" >/dev/null || { echo "Skipped: $compiler is not installed"; exit 77; }
for name in ALostObjectIsFound ALostListIsFound; do
    "$compiler" -std=c++17 -fsanitize=address -E "$@" "$test" | grep -q "$name" ||
        { echo "$compiler leaves out $name"; exit 1; }
done
