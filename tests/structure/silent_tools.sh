#!/bin/sh
# silent_tools.sh NM READELF LIBRARY OBJECT
#
# The tests that read the library by tools fail when one of these prints nothing or is not there.
nm=$1
readelf=$2
library=$3
object=$4
here=$(cd "$(dirname "$0")" && pwd)
failed=0

# fails TEST ARGUMENT...
fails() {
    script=$1
    shift
    if sh "$here/$script" "$@" >/dev/null 2>&1; then
        echo "succeeds: $script $*"
        failed=1
    fi
}

for silent in true false /nowhere/tool; do
    fails exports.sh $silent "$readelf" "$library"
    fails exports.sh "$nm" $silent "$library"
    fails initialisers.sh $silent "$library" "$object"
done
sh "$here/exports.sh" "$nm" "$readelf" "$library" &&
    sh "$here/initialisers.sh" "$readelf" "$library" "$object" || failed=1
exit $failed
