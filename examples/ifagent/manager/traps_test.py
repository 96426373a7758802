"""traps_test.py AGENT...

Succeeds when net-snmp's trap daemon receives, from the agent's monitors, what the kernel and captured
files say has changed: as traps and as informs, and when one that nobody acknowledges is complained of.
"""

import atexit
import os
import re
import subprocess
import sys

from managed import ENTRY, HERE, add_pair, enter_own_network, kernel, room, run, wait_for

LINK = {"down": ".1.3.6.1.6.3.1.1.5.3", "up": ".1.3.6.1.6.3.1.1.5.4"}
COUNTER = ".1.3.6.1.4.1.61999.0.1"
TRAP_OID = ".1.3.6.1.6.3.1.1.4.1.0"
ADDRESS = "127.0.0.1:1162"


class TrapDaemon:
    """snmptrapd, and what it has received: for each notification the kind and the cells."""

    def __init__(self):
        folder = room()
        self.path = folder + "/received"
        with open(folder + "/conf", "w", encoding="ascii") as conf:
            conf.write("authCommunity log public\n")
        with open(self.path, "w", encoding="ascii") as received:
            self.process = subprocess.Popen(
                ["snmptrapd", "-f", "-n", "-C", "-c", folder + "/conf", "-Lo", "-On", "-OQ", "-F",
                 "NOTIFIED %v\n", "udp:" + ADDRESS],
                env=dict(os.environ, SNMP_PERSISTENT_DIR=folder + "/kept", MIBS=""),
                stdin=subprocess.DEVNULL, stdout=received, stderr=received)
        atexit.register(self.stop)
        wait_for("the start of snmptrapd", lambda: "NET-SNMP version" in self.text())

    def text(self):
        with open(self.path, encoding="ascii") as received:
            return received.read()

    def received(self):
        notifications = []
        for line in self.text().splitlines():
            if line.startswith("NOTIFIED "):
                cells = dict(cell.split(" = ") for cell in line[9:].split("\t"))
                cells.pop(".1.3.6.1.2.1.1.3.0")  # for how long the machine has been up
                notifications.append((cells.pop(TRAP_OID), cells))
        return notifications

    def expect(self, expected):
        wait_for("the notifications", lambda: len(self.received()) >= len(expected))
        if self.received() != expected:
            raise SystemExit(f"received {self.received()}, not {expected}")

    def stop(self):
        self.process.terminate()
        self.process.wait(30)


def configuration(*lines):
    path = room() + "/conf"
    with open(path, "w", encoding="ascii") as conf:
        conf.write("interval 0\n" + "".join(line + "\n" for line in lines))
    return path


def cells(index, name, column, value):
    return {f"{ENTRY}.1.{index}": str(index), f"{ENTRY}.2.{index}": f'"{name}"',
            f"{ENTRY}.{column}.{index}": str(value)}


def check_links(daemon, agent):
    """The agent polls whenever it is asked, and so between two states of the link."""
    add_pair("one")
    index = next(index for index, (name, _) in kernel().items() if name == "onea")
    conf = configuration("monitor LinkMonitor onea", f"notify {ADDRESS} public")
    process = subprocess.Popen(agent + ["--pass-persist", "--config", conf], text=True,
                               stdin=subprocess.PIPE, stdout=subprocess.PIPE)

    def poll():
        process.stdin.write(f"get\n{ENTRY}.8.{index}\n")
        process.stdin.flush()
        return [process.stdout.readline().strip() for _ in range(3)][2]

    expected = []
    assert poll() == "1"
    for state, status in ("down", 2), ("up", 1):
        run("ip", "link", "set", "onea", state)
        wait_for("the link " + state, lambda wanted=str(status): poll() == wanted)
        expected.append((LINK[state], cells(index, "onea", 8, status)))
    process.stdin.close()
    assert process.wait(30) == 0
    daemon.expect(expected)
    return expected


def check_counters(daemon, agent, already, *inform):
    conf = configuration("monitor TrafficMonitor eth0", "monitor FaultMonitor",
                         " ".join(["notify", ADDRESS, "public", *inform]))
    files = [HERE + "/../data/normal.txt", HERE + "/../data/later.txt"]
    report = run(*agent, "--config", conf, *files)
    expected = list(already)
    for name, oid, after in re.findall(r"^\w+Monitor: (\w+) \w+ \((.*)\) .* -> (\d+)", report, re.M):
        column, index = oid.split(".")[-2:]
        expected.append((COUNTER, cells(index, name, column, after)))
    assert len(expected) > len(already) + 5
    daemon.expect(expected)
    return expected


def check_silence(agent):
    """Nobody listens: a trap is sent all the same, an inform has not arrived."""
    files = [HERE + "/../data/normal.txt", HERE + "/../data/later.txt"]
    for kind, status in ("", 0), (" inform", 1):
        conf = configuration("monitor FaultMonitor eth0", "notify 127.0.0.1:9 public" + kind)
        result = subprocess.run(agent + ["--config", conf] + files, stdout=subprocess.DEVNULL,
                                stderr=subprocess.PIPE, text=True, timeout=60, check=False)
        assert result.returncode == status, result
        assert ("ifagent: 127.0.0.1:9 was not notified" in result.stderr) == (status == 1), result


def main():
    enter_own_network("snmptrapd", "snmptrap", "ip")
    agent = sys.argv[1:]
    daemon = TrapDaemon()
    received = check_links(daemon, agent)
    received = check_counters(daemon, agent, received)
    check_counters(daemon, agent, received, "inform")
    check_silence(agent)
    print("every notification arrived as it was meant")


main()
