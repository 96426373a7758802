#!/bin/sh
# in_own_network.sh COMMAND...
#
# Runs the command in a user and network namespace, unless it is root's or that is not allowed. A
# program makes itself such a namespace only as long as it has one thread, and an emulator has more.
if [ "$(id -u)" != 0 ] && unshare --map-root-user --net true 2>/dev/null; then
    exec unshare --map-root-user --net "$@"
fi
exec "$@"
