#!/bin/sh
# stored.sh TARGET LIBRARY
#
# The interface of the built library is the one that is stored for the target.
for tool in abidiff python3; do
    command -v $tool >/dev/null || { echo "Skipped: no $tool"; exit 77; }
done
exec "$(dirname "$0")/../../scripts/abi" check "$1" "$2"
