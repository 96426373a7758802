#!/bin/sh
# cleared.sh COMPILER SOURCE_DIR
#
# What a destructor clears is cleared in the memory, at every level of optimisation and with a mutex
# whose destructor is nothing: compilers drop stores that nobody can see after the object's life.
compiler=$1
sources=$2
command -v "$compiler" >/dev/null || { echo "Skipped: $compiler is not installed"; exit 77; }
work=$(mktemp -d) || exit
trap 'rm -rf "$work"' EXIT

cat >"$work/TqLinuxMutex.h" <<END
#ifndef TQ_LINUX_MUTEX_H
#define TQ_LINUX_MUTEX_H
class TqLinuxMutex {
public:
    int Lock() { return 0; }
    int Unlock() { return 0; }
};
#endif
END

failed=0
for level in -O0 -O1 -O2 -O3 -Os; do
    if "$compiler" $level -std=c++11 -fno-exceptions -I"$work" -I"$sources/common" \
        "$sources"/common/*.cpp "$sources/tests/structure/cleared.cpp" -o "$work/cleared" &&
        "$work/cleared"; then
        echo "$level: cleared"
    else
        echo "$level: FAILED"
        failed=1
    fi
done
exit $failed
