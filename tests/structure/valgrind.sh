#!/bin/sh
# valgrind.sh PROGRAM [FILTER]
#
# The tests that the filter names, or else those of values and buffers, decide nothing by what was
# not written, touch nothing that is not theirs, and lose nothing. tests/support/memcheck.supp says
# what valgrind is not to report.
command -v valgrind >/dev/null || { echo "Skipped: no valgrind"; exit 77; }
values='TqBoolean.*:TqBuffer*.*:TqCounter.*:TqDateTime.*:TqFloat.*:TqItem.*:TqNumber.*'
export TQ_RUNS_SLOWLY=yes
exec valgrind -q --error-exitcode=9 --leak-check=full --errors-for-leak-kinds=definite \
    --suppressions="$(dirname "$0")/../support/memcheck.supp" \
    "$1" --gtest_brief=1 --gtest_filter="${2:-$values}"
