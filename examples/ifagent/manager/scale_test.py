"""scale_test.py POLLS WALKS PAIRS AGENT...

Succeeds when ifagent bears size and time:

- one poll of 10,000 interfaces takes at most three times what cat and awk take to print the same;
- its memory is the same after so many POLLS, of the kernel and of a file;
- of as many WALKS by snmpbulkwalk over so many PAIRS of interfaces, while their counters change, none
  loses a row, has one twice or is out of order, and neither agent nor daemon grows.

1000 walks of 1000 interfaces take a quarter of an hour: scale_test.py 10000 1000 500 AGENT
Few walks are over before the agent polls again: then its configuration has to say interval 0.
"""

import os
import resource
import socket
import subprocess
import sys
import threading
import time

from managed import (COLUMNS, ENTRY, HERE, Daemon, add_pair, client, enter_own_network, kernel, room,
                     run)

MAY_TAKE = 3
MAY_GROW = 64  # KiB
COUNT = 10000


def seconds_of(command, output):
    """The processors' time that a command takes, and what it prints."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    with open(output, "wb") as file:
        subprocess.run(command, stdout=file, shell=isinstance(command, str), check=True, timeout=120)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime


def check_speed(agent):
    folder = room()
    with open(folder + "/many", "w", encoding="ascii") as many:
        for i in range(1, COUNT + 1):
            numbers = " ".join(str(i * 1000 * n) for n in range(1, 17))
            many.write(f"port{i:05}: {numbers}\n")
    awk = f"cat {folder}/many | awk -f {HERE}/json.awk"
    poll = agent + ["--once", "--json", folder + "/many"]
    expected = min(seconds_of(awk, folder + "/awk") for _ in range(5))
    taken = min(seconds_of(poll, folder + "/json") for _ in range(5))
    report = min(seconds_of(agent + ["--once", folder + "/many"], folder + "/report")
                 for _ in range(5))
    with open(folder + "/awk", encoding="ascii") as one, \
            open(folder + "/json", encoding="ascii") as other:
        assert one.read() == other.read().partition(",")[2], "awk prints something else"
    print(f"{COUNT} interfaces: cat and awk {expected * 1000:.0f} ms, a poll {taken * 1000:.0f} ms: "
          f"{taken / expected:.1f} times; with the report for people {report / expected:.1f} times")
    assert taken <= MAY_TAKE * expected, "too slow"


def resident(pid):
    with open(f"/proc/{pid}/status", encoding="ascii") as status:
        return next(int(line.split()[1]) for line in status if line.startswith("VmRSS:"))


def check_growth(what, settled, pids):
    grown = {pid: resident(pid) - kib for pid, kib in settled.items()}
    print(f"{what}: {[resident(pid) for pid in pids]} KiB, grown by {list(grown.values())} KiB")
    assert max(grown.values()) <= MAY_GROW, "memory has grown"


def check_polls(agent, count, *files):
    """Each request is a poll."""
    process = subprocess.Popen(agent + ["--pass-persist", "--config", HERE + "/every.conf", *files],
                               text=True, stdin=subprocess.PIPE, stdout=subprocess.PIPE)
    settled = {}
    for poll in range(count):
        process.stdin.write(f"getnext\n{ENTRY}\n")
        process.stdin.flush()
        assert [process.stdout.readline() for _ in range(3)][1] == "integer\n"
        if poll == count // 2:
            settled[process.pid] = resident(process.pid)
    check_growth(f"{count} polls of {files[-1] if files else 'the kernel'}", settled, [process.pid])
    process.stdin.close()
    assert process.wait(30) == 0


def check_walks(agent, count, pairs):
    for i in range(pairs):
        add_pair(f"p{i}")
    run("ip", "address", "add", "10.9.0.1/24", "dev", "p0a")
    run("ip", "neighbour", "add", "10.9.0.2", "lladdr", "02:00:00:00:00:02", "dev", "p0a")
    daemon = Daemon(agent + ["--pass-persist"])
    stopped = threading.Event()
    sender = threading.Thread(target=send_packets, args=[stopped])
    sender.start()
    expected = [f"{ENTRY}.{column}.{index}" for column, _ in COLUMNS.values()
                for index in sorted(kernel())]
    start = time.monotonic()
    pids = [daemon.process.pid] + [int(pid) for pid in daemon.children()]
    settled = {}
    earlier = ""
    changed = 0
    try:
        for walk in range(count):
            output = client("snmpbulkwalk", "-Cr50", "-OnQ", ENTRY)
            lines = output.splitlines()
            shown = [line.partition(" = ")[0] for line in lines]
            assert shown == expected, f"walk {walk}: {set(shown) ^ set(expected)}"
            changed += output != earlier
            earlier = output
            if walk * 10 // count > (walk - 1) * 10 // count:
                print(f"{walk:5} walks: {[resident(pid) for pid in pids]} KiB", flush=True)
            if walk == count // 2:  # memory that is used and given back takes a while to settle
                settled = {pid: resident(pid) for pid in pids}
    finally:
        stopped.set()
        sender.join()
    print(f"{count} walks of {len(kernel())} interfaces, {changed} of them with new numbers, in "
          f"{time.monotonic() - start:.0f} s")
    check_growth("daemon and agent", settled, pids)
    assert changed > count // 10, "the counters have not changed"


def send_packets(stopped):
    sender = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    while not stopped.wait(0.01):
        sender.sendto(b"hello", ("10.9.0.2", 9))


def main():
    enter_own_network("snmpd", "snmpbulkwalk", "ip", "ps")
    polls, walks, pairs = (int(word) for word in sys.argv[1:4])
    agent = sys.argv[4:]
    check_speed(agent)
    check_polls(agent, polls, os.path.normpath(HERE + "/../data/normal.txt"))
    check_polls(agent, polls)
    check_walks(agent, walks, pairs)


main()
