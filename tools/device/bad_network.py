#!/usr/bin/env python3
"""bad_network.py LISTEN SERVER SEED

A bad network between TFTP clients and the server at the address SERVER: passes on what comes to
port 69 of the address LISTEN, and the answers. One datagram in ten is lost, one in ten comes twice,
and one in five is late, so that others overtake it.
"""

import heapq
import itertools
import random
import select
import socket
import sys
import time

LOSS, REPEAT, LATE = 0.1, 0.1, 0.2
LONGEST_DELAY = 0.05  # seconds


def bound(host, port):
    result = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    result.bind((host, port))
    return result


class Client:
    """One client port: `towards` is what the server sees of it, `ports` what it sees of the server."""

    def __init__(self, address, host):
        self.address = address
        self.host = host
        self.towards = bound(host, 0)
        self.ports = {}

    def port_for(self, server):
        if server not in self.ports:
            self.ports[server] = bound(self.host, 0)
        return self.ports[server]


class Network:
    def __init__(self, listen, server, seed):
        self.host = listen
        self.server = (server, 69)
        self.listener = bound(listen, 69)
        self.random = random.Random(seed)
        self.clients = {}
        self.waiting = []
        self.order = itertools.count()

    def pass_on(self, by, data, to):
        if self.random.random() < LOSS:
            return
        for _ in range(2 if self.random.random() < REPEAT else 1):
            late = self.random.random() < LATE
            due = time.monotonic() + (self.random.uniform(0, LONGEST_DELAY) if late else 0)
            heapq.heappush(self.waiting, (due, next(self.order), by, data, to))

    def from_client_to_listener(self):
        data, address = self.listener.recvfrom(65536)
        if address not in self.clients:
            self.clients[address] = Client(address, self.host)
        self.pass_on(self.clients[address].towards, data, self.server)

    def readers(self):
        """Each socket with the function that reads it."""
        result = {self.listener: self.from_client_to_listener}
        for client in self.clients.values():
            result[client.towards] = lambda c=client: self.from_server(c)
            for server, port in client.ports.items():
                result[port] = lambda c=client, s=server, p=port: self.from_client(c, s, p)
        return result

    def from_server(self, client):
        data, server = client.towards.recvfrom(65536)
        self.pass_on(client.port_for(server), data, client.address)

    def from_client(self, client, server, port):
        self.pass_on(client.towards, port.recvfrom(65536)[0], server)

    def serve(self):
        while True:
            readers = self.readers()
            wait = max(0, self.waiting[0][0] - time.monotonic()) if self.waiting else None
            for ready in select.select(list(readers), [], [], wait)[0]:
                readers[ready]()
            while self.waiting and self.waiting[0][0] <= time.monotonic():
                _, _, by, data, to = heapq.heappop(self.waiting)
                by.sendto(data, to)


def main():
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    Network(sys.argv[1], sys.argv[2], int(sys.argv[3])).serve()


if __name__ == "__main__":
    main()
