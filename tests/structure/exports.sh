#!/bin/sh
# exports.sh NM READELF LIBRARY
#
# The shared library exports its public interface, each name under a version of the library, and
# nothing else, and needs nothing but the C and C++ libraries.
export LC_ALL=C
nm=$1
readelf=$2
library=$3
failed=0

versioned=$("$nm" -D --defined-only "$library" | sed 's/^[0-9a-f]* *[A-Za-z] //' |
    grep -v '^TQCOMMON_[0-9.]*\(@.*\)\?$')
unversioned=$(echo "$versioned" | grep -v '@@TQCOMMON_[0-9.]*$')
if [ -n "$unversioned" ]; then
    echo "$library exports without a version:"
    echo "$unversioned"
    failed=1
fi
# Not every nm demangles a name that has a version.
exported=$(echo "$versioned" | sed 's/@@TQCOMMON_[0-9.]*$//' | c++filt)
if ! echo "$exported" | grep -q '^TqRegisterAssertCb$'; then
    echo "$library exports no TqRegisterAssertCb"
    failed=1
fi

prefix='(vtable for |VTT for |typeinfo for |typeinfo name for |(non-)?virtual thunk to )?'
public="^($prefix(Tq[A-Z][A-Za-z0-9]*)(<.*>)?(::.*|\(.*)?|tqDebugPrintOn|TFTP_[A-Za-z0-9_]+\
|RTCS_time_get|_tftp_error_[A-Za-z0-9_]+)(\[abi:[a-z0-9]+\])?(\(.*)?$"
strangers=$(echo "$exported" | grep -vE "$public")
if [ -n "$strangers" ]; then
    echo "$library exports what is not public:"
    echo "$strangers"
    failed=1
fi

needed=$("$readelf" -dW "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p')
if ! echo "$needed" | grep -q '^libc\.so\.'; then
    echo "$library does not need the C library, says $readelf"
    failed=1
fi
allowed='^(lib(c|m|stdc\+\+|gcc_s|pthread)\.so\.[0-9]+|ld[-a-z0-9]*\.so\.[0-9]+)$'
others=$(echo "$needed" | grep -vE "$allowed")
if [ -n "$others" ]; then
    echo "$library needs:"
    echo "$others"
    failed=1
fi
exit $failed
