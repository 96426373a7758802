#!/bin/sh
# walk.sh AGENT...
#
# Shows the interfaces as a network manager sees them: starts Debian's SNMP daemon on loopback with
# a configuration of its own that has the agent, ifagent --pass-persist, serve the table, walks
# that, and ends the daemon. Says in a line how to install what is missing.
PATH=$PATH:/usr/sbin:/sbin
if ! command -v snmpd >/dev/null || ! command -v snmptable >/dev/null; then
    echo "an SNMP daemon would show the same table to network managers: apt-get install snmpd snmp"
    exit
fi
here=$(cd "$(dirname "$0")" && pwd)
address=127.0.0.1:$((20000 + $$ % 20000))
room=$(mktemp -d)
trap 'exit 130' INT TERM
trap 'kill $daemon 2>/dev/null; wait; rm -rf "$room"' EXIT
cat >"$room/snmpd.conf" <<END
agentAddress udp:$address
rocommunity public 127.0.0.1
pass_persist .1.3.6.1.2.1.2.2 $*
END
export SNMP_PERSISTENT_DIR="$room/kept"
MIBS='' snmpd -f -Lo -C -c "$room/snmpd.conf" -I -ifTable,ifXTable >"$room/log" 2>&1 &
daemon=$!

# manager TOOL ARGUMENT...
manager() {
    tool=$1
    shift
    "$tool" -v2c -c public -M "$here/manager" -m IFAGENT-MIB "$@"
}

tries=0
until manager snmpget -r0 "$address" IFAGENT-MIB::ifIndex.1 >/dev/null 2>&1; do
    tries=$((tries + 1))
    if [ $tries = 20 ] || ! kill -0 $daemon 2>/dev/null; then
        echo "the SNMP daemon does not answer:"
        cat "$room/log"
        exit 1
    fi
    sleep 0.2
done
echo 'snmpwalk IFAGENT-MIB::ifOperStatus, and then snmptable IFAGENT-MIB::ifTable:'
manager snmpwalk "$address" IFAGENT-MIB::ifOperStatus
manager snmptable -Cb -Cw 100 "$address" IFAGENT-MIB::ifTable
