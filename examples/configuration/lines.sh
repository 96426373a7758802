#!/bin/sh
# The typed interface takes no more lines than the standard library, blank ones and comments not
# counted, and fewer than the plain one.
lines() { grep -cvE '^ *(//.*)?$' "$1"; }

plain=$(lines plain.cpp)
comfort=$(lines comfort.cpp)
standard=$(lines standard.cpp)
echo "plain $plain, comfort $comfort, standard $standard"
[ "$comfort" -le "$standard" ] && [ "$comfort" -lt "$plain" ]
