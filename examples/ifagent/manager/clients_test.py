"""clients_test.py AGENT...

Succeeds when Debian's SNMP clients see, through its daemon and the agent, the interfaces of this
network as the kernel does: cell by cell, while counters move, interfaces come and go, and the daemon
is started anew.
"""

import os
import socket
import sys
import threading

from managed import (COLUMNS, ENTRY, HERE, Daemon, add_pair, check_cell, client, enter_own_network,
                     kernel, run, wait_for)


def send_packets(stopped):
    """Keeps the counters moving: those of lo, and of a pair."""
    sender = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    while not stopped.wait(0.001):
        sender.sendto(b"hello", ("127.0.0.1", 9))
        sender.sendto(b"hello" * 100, ("10.9.0.2", 9))


def parse(output):
    """The lines "IFAGENT-MIB::ifDescr.1 = lo" of a client, as name, index, value."""
    cells = []
    for line in output.splitlines():
        identifier, _, value = line.partition(" = ")
        name, _, index = identifier.partition("::")[2].partition(".")
        if not index.isdigit():
            raise SystemExit(f"no cell: {line}")
        cells.append((name, int(index), value))
    return cells


def in_order(interfaces):
    """All cells of the table as a walk meets them."""
    return [(name, index) for name in COLUMNS for index in sorted(interfaces)]


def check_walk(tool, *options):
    before = kernel()
    cells = parse(client(tool, *options, "-OQ", ENTRY))
    after = kernel()
    if [cell[:2] for cell in cells] != in_order(before):
        raise SystemExit(f"{tool} meets {cells}")
    for name, index, value in cells:
        check_cell(name, value, index, before, after)


def check_single(tool):
    """Each cell by a request of its own; get-next is asked for the one before."""
    before = kernel()
    places = in_order(before)
    asked = ["IFAGENT-MIB::%s.%d" % place for place in places]
    if tool == "snmpgetnext":
        asked = [ENTRY] + asked[:-1]
    cells = []
    for start in range(0, len(asked), 10):
        cells += parse(run(tool, "-v2c", "-cpublic", "-t10", "-r3", "-M", HERE, "-m", "IFAGENT-MIB",
                           "-OQ", "127.0.0.1:1161", *asked[start:start + 10]))
    after = kernel()
    if [cell[:2] for cell in cells] != places:
        raise SystemExit(f"{tool} gets {cells}")
    for name, index, value in cells:
        check_cell(name, value, index, before, after)


def check_table():
    before = kernel()
    lines = client("snmptable", "-Cf", "|", "IFAGENT-MIB::ifTable").splitlines()
    after = kernel()
    lines = [line for line in lines if "|" in line]
    if lines[0].split("|") != list(COLUMNS):
        raise SystemExit("snmptable has the columns " + lines[0])
    rows = [dict(zip(COLUMNS, line.split("|"))) for line in lines[1:]]
    if [int(row["ifIndex"]) for row in rows] != sorted(before):
        raise SystemExit(f"snmptable has the rows {rows}")
    for row in rows:
        for name, value in row.items():
            check_cell(name, value, int(row["ifIndex"]), before, after)


def check_all():
    check_walk("snmpwalk")
    check_walk("snmpbulkwalk")
    check_walk("snmpbulkwalk", "-Cr50")
    check_single("snmpget")
    check_single("snmpgetnext")
    check_table()


def names():
    return [value for name, _, value in parse(client("snmpwalk", "-OQ", ENTRY + ".2"))]


def main():
    enter_own_network("snmpd", "snmpget", "snmptable", "ip", "ps")
    add_pair("one")
    run("ip", "address", "add", "10.9.0.1/24", "dev", "onea")
    run("ip", "neighbour", "add", "10.9.0.2", "lladdr", "02:00:00:00:00:02", "dev", "onea")
    daemon = Daemon(sys.argv[1:])
    stopped = threading.Event()
    sender = threading.Thread(target=send_packets, args=[stopped])
    sender.start()
    try:
        check_all()

        add_pair("two")
        wait_for("a new pair", lambda: names() == ["lo", "oneb", "onea", "twob", "twoa"])
        check_all()
        run("ip", "link", "set", "twoa", "down")
        check_walk("snmpbulkwalk")
        run("ip", "link", "delete", "twoa")
        check_walk("snmpwalk")
        check_table()

        # The agent gone: the daemon starts another one. The daemon gone: so is the agent.
        old = daemon.children()
        os.kill(int(old[0]), 9)
        wait_for("another agent", lambda: client("snmpwalk", "-OQ", ENTRY, check=False).count("::") ==
                 len(in_order(kernel())))
        check_walk("snmpwalk")
        old = daemon.children()
        daemon.stop()
        wait_for("the end of the agent", lambda: not os.path.exists(f"/proc/{old[0]}"))
        daemon.start()
        check_walk("snmpbulkwalk")
        check_table()
    finally:
        stopped.set()
        sender.join()
    print("every cell is as the kernel says")


main()
