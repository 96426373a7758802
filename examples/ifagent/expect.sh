#!/bin/sh
# expect.sh FILE COMMAND...
# Succeeds when COMMAND prints what stands in FILE: its output and complaints, and as the last line
# its exit status.
expected=$1
shift
{
    "$@" 2>&1
    echo "exit status $?"
} | diff -u "$expected" -
