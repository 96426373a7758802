#include "TftpProxy.h"

#include <poll.h>

#include <algorithm>
#include <vector>

namespace {

const std::size_t headerLength = 4;
const std::size_t longestPacket = 516;

void Spoil(char& byte, unsigned int bits) {
    byte = static_cast<char>(byte ^ static_cast<char>(bits));
}

}  // namespace

TftpProxy::TftpProxy(UdpSocket taken, const Endpoint& realServer, const Troubles& wanted,
                     unsigned int seed)
    : listener(std::move(taken)),
      server(realServer),
      troubles(wanted),
      random(seed),
      lastFromServer(Now()) {}

void TftpProxy::Serve(int milliseconds) {
    std::vector<pollfd> descriptors = {{listener.Descriptor(), POLLIN, 0}};
    for (const auto& client : clients) {
        descriptors.push_back({client.second.toServer.Descriptor(), POLLIN, 0});
        for (const auto& port : client.second.toClient) {
            descriptors.push_back({port.second.Descriptor(), POLLIN, 0});
        }
    }
    if (troubles.endAfter != 0) milliseconds = std::min(milliseconds, troubles.endAfter);
    if (!waiting.empty()) {
        const long long left = std::max(0LL, waiting.begin()->first - Now());
        milliseconds = static_cast<int>(std::min<long long>(left, milliseconds));
    }
    poll(descriptors.data(), descriptors.size(), milliseconds);
    ReceiveRequests();
    for (auto& client : clients) ReceiveFor(client.first, client.second);
    SendWhatIsDue();
    EndIfSilent();
}

void TftpProxy::ReceiveRequests() {
    Octets bytes;
    Endpoint sender;
    while (listener.Receive(bytes, sender, 0)) {
        Client& client = clients.emplace(sender, listener.At()).first->second;
        const Datagram datagram = {&client.toServer, server, bytes};
        if (++fromClients <= troubles.firstLosses) continue;
        if (troubles.sparesRequests) {
            waiting.emplace(Now(), datagram);
        } else {
            PassOn(datagram);
        }
    }
}

void TftpProxy::ReceiveFor(const Endpoint& address, Client& client) {
    Octets bytes;
    Endpoint sender;
    while (client.toServer.Receive(bytes, sender, 0)) {
        if (sender.host != server.host) continue;
        lastFromServer = Now();
        const Endpoint own = {listener.At().host, 0};
        auto port = client.toClient.find(sender);
        if (port == client.toClient.end()) {
            port = client.toClient.emplace(sender, UdpSocket(own)).first;
        }
        PassOn({&port->second, address, bytes});
    }
    for (const auto& port : client.toClient) {
        while (port.second.Receive(bytes, sender, 0)) {
            if (++fromClients <= troubles.firstLosses) continue;
            if (sender == address) PassOn({&client.toServer, port.first, bytes});
        }
    }
}

void TftpProxy::PassOn(const Datagram& datagram) {
    if (Happens(troubles.loss)) return;
    const int copies = Happens(troubles.duplication) ? 2 : 1;
    for (int i = 0; i < copies; ++i) {
        Datagram copy = datagram;
        Disturb(copy.bytes);
        long long due = Now();
        if (Happens(troubles.delay)) {
            due += 1 + Below(static_cast<unsigned int>(troubles.longestDelay));
        }
        waiting.emplace(due, copy);
    }
}

void TftpProxy::Disturb(Octets& bytes) {
    if (Happens(troubles.truncation)) Truncate(bytes);
    if (Happens(troubles.corruption)) Corrupt(bytes);
}

void TftpProxy::Truncate(Octets& bytes) {
    if (bytes.empty()) return;
    const std::size_t limit = troubles.isUnnoticed ? bytes.size() : headerLength;
    bytes.resize(std::min(bytes.size(), std::size_t(Below(static_cast<unsigned int>(limit)))));
}

void TftpProxy::Corrupt(Octets& bytes) {
    if (troubles.isUnnoticed) {
        for (unsigned int i = 0; i <= Below(4) && !bytes.empty(); ++i) {
            bytes[Below(static_cast<unsigned int>(bytes.size()))] = static_cast<char>(random());
        }
        return;
    }
    if (bytes.size() < headerLength) return;
    switch (Below(3)) {
        case 0:  // the operation
            Spoil(bytes[Below(2)], 1 + Below(255));
            break;
        case 1:  // the number, far away
            Spoil(bytes[2], 0x40 + Below(64));
            break;
        default:  // the length
            if (bytes.size() == longestPacket) bytes.resize(longestPacket + 1 + Below(1000));
            break;
    }
}

void TftpProxy::SendWhatIsDue() {
    while (!waiting.empty() && waiting.begin()->first <= Now()) {
        const Datagram& datagram = waiting.begin()->second;
        datagram.by->Send(datagram.to, datagram.bytes);
        waiting.erase(waiting.begin());
    }
}

void TftpProxy::EndIfSilent() {
    if (troubles.endAfter == 0 || Now() - lastFromServer < troubles.endAfter) return;
    const Octets error("\0\5\0\0given up\0", 13);
    for (const auto& client : clients) {
        listener.Send(client.first, error);
        for (const auto& port : client.second.toClient) port.second.Send(client.first, error);
    }
    lastFromServer = Now();
}
