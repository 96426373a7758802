#!/bin/sh
# valgrind.sh PROGRAM
#
# The reader of items looks at nothing that was not written.
command -v valgrind >/dev/null || { echo "Skipped: no valgrind"; exit 77; }
exec valgrind -q --error-exitcode=1 --leak-check=no "$1" --gtest_brief=1 \
    --gtest_filter='TqItem.TheLengthIsReadLeniently:TqItem.ANulEndsTheLength'
