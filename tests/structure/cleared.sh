#!/bin/sh
# cleared.sh SOURCE_DIR COMPILER EMULATOR...
#
# What a destructor clears is cleared in the memory, at the lowest and the highest level of
# optimisation, the linker's included, and with a mutex whose destructor is nothing: compilers drop
# stores that nobody can see after the object's life.
sources=$1
compiler=$2
shift 2
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

linker=
case $compiler in
    clang*) command -v ld.lld >/dev/null && linker=-fuse-ld=lld ;;
    *) linker=-fuse-ld=bfd ;;
esac

# Emulated processors have the compiler of the host's tests: the linker's optimisation will do.
levels='-O1 -O3'
[ $# -eq 0 ] || levels=

failed=0
for level in $levels "-O1 -flto" "-O3 -flto"; do
    case $linker:$level in
        :*-flto) echo "$level: left out, no linker for it"; continue ;;
    esac
    # shellcheck disable=SC2086  # several flags
    if "$compiler" $level $linker -std=c++11 -fno-exceptions -I"$work" -I"$sources/common" \
        "$sources"/common/*.cpp "$sources/tests/structure/cleared.cpp" -o "$work/cleared" &&
        "$@" "$work/cleared"; then
        echo "$level: cleared"
    else
        echo "$level: FAILED"
        failed=1
    fi
done
exit $failed
