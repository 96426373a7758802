#!/bin/sh
# compiles.sh headers|sources COMPILER STANDARD FILE... -- FLAG...
#
# headers: each one compiles alone, and included twice.
# sources: each one compiles.
# Neither gives a warning. Exits with 77 (skipped) when the compiler is not installed.
what=$1
compiler=$2
standard=$3
shift 3

command -v "$compiler" >/dev/null || { echo "Skipped: $compiler is not installed"; exit 77; }

files=
while [ $# -gt 0 ] && [ "$1" != -- ]; do
    files="$files
$1"
    shift
done
[ -n "$files" ] || { echo "no files given"; exit 1; }
shift

compile() {
    "$compiler" -std="$standard" -fsyntax-only -Werror "$@"
}

failed=0
IFS='
'
for file in $files; do
    case $what in
        headers) printf '#include "%s"\n#include "%s"\n' "$file" "$file" | compile "$@" -x c++ - ;;
        sources) compile "$@" "$file" ;;
    esac || { echo "FAILED: $file as $standard by $compiler"; failed=1; }
done
exit $failed
