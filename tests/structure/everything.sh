#!/bin/sh
# everything.sh COMMON_DIR
#
# Tq.h includes every public header but itself and TqStd.h, which brings more along than all others.
cd "$1" || exit
failed=0
for header in *.h; do
    case $header in
        Tq.h | TqStd.h) expected=0 ;;
        *) expected=1 ;;
    esac
    found=$(grep -cFx "#include \"$header\"" Tq.h)
    [ "$found" -eq "$expected" ] && continue
    echo "Tq.h includes $header $found times, not $expected"
    failed=1
done
exit $failed
