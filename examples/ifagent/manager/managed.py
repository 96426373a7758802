"""What the tests with real managers share: a network of their own, the daemon, its clients."""

import atexit
import os
import shutil
import socket
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))
ADDRESS = "127.0.0.1:1161"
ENTRY = ".1.3.6.1.2.1.2.2.1"
# Each column, and the number of a line of /proc/net/dev that it shows.
COLUMNS = {
    "ifIndex": (1, None), "ifDescr": (2, None), "ifOperStatus": (8, None),
    "ifInOctets": (10, 0), "ifInUcastPkts": (11, 1), "ifInNUcastPkts": (12, 7),
    "ifInDiscards": (13, 3), "ifInErrors": (14, 2), "ifOutOctets": (16, 8),
    "ifOutUcastPkts": (17, 9), "ifOutDiscards": (19, 11), "ifOutErrors": (20, 10),
}
TRAFFIC = ["ifInOctets", "ifInUcastPkts", "ifOutOctets", "ifOutUcastPkts"]


def skip(reason):
    print("Skipped: " + reason)
    sys.exit(77)


def run(*command, check=True, **options):
    """What a command prints; its end is waited for, but not for ever."""
    result = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                            timeout=120, check=False, **options)
    if check and result.returncode != 0:
        raise SystemExit(f"{' '.join(command)}: status {result.returncode}\n{result.stdout}")
    return result.stdout


def enter_own_network(*tools):
    """Starts this script again in a network that has nothing but a loopback interface."""
    os.environ["PATH"] += ":/usr/sbin:/sbin"
    for tool in tools:
        if shutil.which(tool) is None:
            skip(f"{tool} is not installed")
    if "IN_OWN_NETWORK" not in os.environ:
        unshare = ["unshare", "--net"] + ([] if os.getuid() == 0 else ["--map-root-user"])
        if subprocess.run(unshare + ["true"], stderr=subprocess.DEVNULL, check=False).returncode:
            skip("no network namespace of its own")
        os.environ["IN_OWN_NETWORK"] = "yes"
        os.execvp("unshare", unshare + [sys.executable] + sys.argv)
    # Clients at the same time would complain of each other's file there.
    os.environ["SNMP_PERSISTENT_DIR"] = room()
    run("ip", "link", "set", "lo", "up")


def add_pair(name):
    """Two interfaces, NAMEa and NAMEb, and what is sent to the one arrives at the other."""
    if run("ip", "link", "add", name + "a", "type", "veth", "peer", "name", name + "b",
           check=False):
        skip("no veth interfaces in this kernel")
    run("ip", "link", "set", name + "a", "up")
    run("ip", "link", "set", name + "b", "up")


def room():
    """A folder that goes away at the end."""
    folder = tempfile.mkdtemp()
    atexit.register(shutil.rmtree, folder, True)
    return folder


def wait_for(what, condition, seconds=60):
    end = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > end:
            raise SystemExit("not within a minute: " + what)
        time.sleep(0.02)


def client(tool, *arguments, **options):
    return run(tool, "-v2c", "-cpublic", "-t10", "-r3", "-M", HERE, "-m", "IFAGENT-MIB",
               *arguments[:-1], ADDRESS, *arguments[-1:], **options)


class Daemon:
    """snmpd with a configuration of its own that has `agent` serve the table."""

    def __init__(self, agent):
        self.folder = room()
        words = " ".join(agent)
        with open(self.folder + "/snmpd.conf", "w", encoding="ascii") as conf:
            conf.write(f"agentAddress udp:{ADDRESS}\nrocommunity public 127.0.0.1\n"
                       f"pass_persist .1.3.6.1.2.1.2.2 {words}\n")
        self.process = None
        atexit.register(self.stop)
        self.start()

    def start(self):
        # What it keeps from run to run is in a file of the same name.
        environment = dict(os.environ, SNMP_PERSISTENT_DIR=self.folder + "/kept", MIBS="")
        with open(self.folder + "/log", "a", encoding="utf-8") as log:
            # Its own interface table stays out of the way.
            self.process = subprocess.Popen(
                ["snmpd", "-f", "-Lo", "-C", "-c", self.folder + "/snmpd.conf",
                 "-I", "-ifTable,ifXTable"],
                env=environment, stdin=subprocess.DEVNULL, stdout=log, stderr=log)
        wait_for("an answer of snmpd", self.answers)

    def answers(self):
        if self.process.poll() is not None:
            with open(self.folder + "/log", encoding="utf-8") as log:
                raise SystemExit("snmpd has ended:\n" + log.read())
        return "ifIndex" in run("snmpgetnext", "-v2c", "-cpublic", "-t1", "-r0", "-M", HERE,
                                "-m", "IFAGENT-MIB", ADDRESS, ENTRY, check=False)

    def stop(self):
        if self.process is not None:
            self.process.terminate()
            self.process.wait(30)
            self.process = None

    def children(self):
        return run("ps", "-o", "pid=", "--ppid", str(self.process.pid), check=False).split()


def kernel():
    """What the kernel says: for each interface by index its name and the numbers of its line."""
    numbers = {}
    with open("/proc/net/dev", encoding="ascii") as lines:
        for line in lines.readlines()[2:]:
            name, _, rest = line.rpartition(":")
            numbers[name.strip()] = [int(word) for word in rest.split()]
    for name, row in numbers.items():
        row[1] -= min(row[1], row[7])
    return {index: (name, numbers[name]) for index, name in socket.if_nameindex()}


def is_up(name):
    return "LOWER_UP" in run("ip", "-o", "link", "show", "dev", name)


def check_cell(name, text, index, before, after):
    """One cell as a client shows it: between what the kernel said before and after."""
    number = COLUMNS[name][1]
    if name == "ifIndex":
        expected = text == str(index)
    elif name == "ifDescr":
        expected = text == before[index][0]
    elif name == "ifOperStatus":
        expected = text == ("up" if is_up(before[index][0]) else "down")
    else:
        low, high = before[index][1][number], after[index][1][number]
        expected = (int(text) - low) % 2**32 <= high - low
    if not expected:
        raise SystemExit(f"{name}.{index} is shown as {text}; kernel: {before[index]}, then "
                         f"{after[index]}")
