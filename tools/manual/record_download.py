#!/usr/bin/env python3
"""Records a download whose packets get lost: record_download.py OUTPUT TQFETCH

Serves a file of 700 bytes on port 69 of a network of its own, acts as if it had not received the
first request and the first acknowledgement, and writes a line for each packet: the tenths of a
second since the first one, who sent it, what it is, and whether it was lost.
"""

import fcntl
import os
import pathlib
import socket
import struct
import subprocess
import sys
import tempfile
import time

CONTENT = bytes(700)
LOST = ["read request", "acknowledgement 1"]


def bring_up(name):
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as asking:
        request = struct.pack("16sh", name.encode(), 1 | 64)  # up and running
        fcntl.ioctl(asking, 0x8914, request + bytes(14))


def serve(client):
    lines = []
    lost = list(LOST)
    door = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    door.bind(("127.0.0.1", 69))
    peer = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    peer.bind(("127.0.0.1", 0))
    door.settimeout(30)
    peer.settimeout(30)
    begun = None

    def note(sender, what):
        nonlocal begun
        now = time.monotonic()
        begun = begun or now
        is_lost = sender == "client" and what in lost
        if is_lost:
            lost.remove(what)
        lines.append(f"{round((now - begun) * 10)}|{sender}|{what}|{'lost' if is_lost else ''}")
        return is_lost

    while True:
        _, address = door.recvfrom(600)
        if not note("client", "read request"):
            break
    for block in (1, 2):
        data = CONTENT[(block - 1) * 512:block * 512]
        peer.sendto(struct.pack(">HH", 3, block) + data, address)
        note("server", f"block {block}, {len(data)} bytes")
        while True:
            packet, _ = peer.recvfrom(600)
            if not note("client", f"acknowledgement {struct.unpack('>HH', packet)[1]}"):
                break
    client.wait(timeout=30)
    return lines


def main():
    if "TQ_OWN_NETWORK" not in os.environ:
        os.environ["TQ_OWN_NETWORK"] = "yes"
        os.execvp("unshare", ["unshare", "--net", "--map-root-user", sys.executable, *sys.argv])
    bring_up("lo")
    with tempfile.TemporaryDirectory() as room:
        client = subprocess.Popen([sys.argv[2], "-q", "-o", f"{room}/file", "127.0.0.1", "file"])
        lines = serve(client)
        if client.returncode != 0 or pathlib.Path(f"{room}/file").read_bytes() != CONTENT:
            sys.exit("the file did not come")
    pathlib.Path(sys.argv[1]).write_text("\n".join(lines) + "\n")


if __name__ == "__main__":
    main()
