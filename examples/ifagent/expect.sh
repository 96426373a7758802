#!/bin/sh
# expect.sh FILE COMMAND...
# Succeeds when COMMAND prints what stands in FILE: its output and complaints, with TIME for the
# time and TEXT for what the library makes of it, and as the last line its exit status.
expected=$1
shift
day='[0-9]\{4\}-[0-9][0-9]-[0-9][0-9]'
time='[0-9][0-9]:[0-9][0-9]:[0-9][0-9]'
{
    "$@" 2>&1
    echo "exit status $?"
} | sed "s|at $day $time UTC\$|at TIME UTC|
    s|^{\"time\":\"$day ${time}Z\"|{\"time\":\"TIME\"|
    s|^\(that time as the library writes it: \)\"[0-9/]* *$time\", .*[0y]\$|\1TEXT|" |
    diff -u "$expected" -
