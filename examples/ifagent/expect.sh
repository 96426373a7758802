#!/bin/sh
# expect.sh FILE COMMAND...
# Succeeds when COMMAND prints what stands in FILE: its output and complaints, with TIME for the
# time of day, and as the last line its exit status.
expected=$1
shift
{
    "$@" 2>&1
    echo "exit status $?"
} | sed 's|at [0-9/: ]* UTC$|at TIME UTC|' | diff -u "$expected" -
