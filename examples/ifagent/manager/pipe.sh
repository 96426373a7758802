#!/bin/sh
# pipe.sh FILE COMMAND...: the command with FILE as its input.
input=$1
shift
exec "$@" <"$input"
