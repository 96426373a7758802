#include "TftpServer.h"

#include <poll.h>
#include <strings.h>
#include <sys/stat.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <vector>

namespace {

const std::size_t blockLength = 512;
const std::size_t longestFile = 65536 * blockLength - blockLength - 1;
const std::size_t mostTransfers = 64;

enum Opcode : unsigned int { readRequest = 1, dataBlock = 3, acknowledgement = 4, error = 5 };

Octets Number(unsigned int number) {
    return Octets{static_cast<char>(number >> 8), static_cast<char>(number)};
}

unsigned int NumberAt(const Octets& packet, std::size_t position) {
    return static_cast<unsigned int>(static_cast<unsigned char>(packet[position]) << 8 |
                                     static_cast<unsigned char>(packet[position + 1]));
}

Octets ErrorPacket(unsigned int code, const char* text) {
    return Number(error) + Number(code) + text + '\0';
}

// A name that leads out of the directory is nobody's business.
bool IsInside(const std::string& name) {
    return !name.empty() && name[0] != '/' && ("/" + name + "/").find("/../") == std::string::npos;
}

bool IsRegularFile(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

}  // namespace

TftpServer::TftpServer(UdpSocket taken, Settings wanted)
    : listener(std::move(taken)), settings(std::move(wanted)) {}

void TftpServer::Serve(int milliseconds) {
    std::vector<pollfd> waiting = {{listener.Descriptor(), POLLIN, 0}};
    for (const Transfer& transfer : transfers) {
        waiting.push_back({transfer.socket.Descriptor(), POLLIN, 0});
        if (settings.resendAfter == 0) continue;
        const long long left = transfer.sentAt + settings.resendAfter - Now();
        milliseconds = static_cast<int>(std::max(0LL, std::min<long long>(left, milliseconds)));
    }
    poll(waiting.data(), waiting.size(), milliseconds);

    Octets packet;
    Endpoint sender;
    for (auto transfer = transfers.begin(); transfer != transfers.end();) {
        bool goesOn = true;
        while (goesOn && transfer->socket.Receive(packet, sender, 0)) {
            goesOn = Continue(*transfer, sender, packet);
        }
        const bool isSilent =
            settings.resendAfter != 0 && Now() - transfer->sentAt >= settings.resendAfter;
        if (goesOn && isSilent) goesOn = Resend(*transfer);
        transfer = goesOn ? std::next(transfer) : transfers.erase(transfer);
    }
    while (listener.Receive(packet, sender, 0)) Answer(sender, packet);
}

void TftpServer::Answer(const Endpoint& client, const Octets& request) {
    for (Transfer& transfer : transfers) {
        if (transfer.client == client) return Repeat(transfer);
    }
    if (request.size() < 4 || NumberAt(request, 0) != readRequest || request.back() != '\0') {
        return Refuse(client, 4, "Only read requests");
    }
    const std::string name = request.c_str() + 2;
    const std::string mode = request.c_str() + std::min(2 + name.size() + 1, request.size() - 1);
    if (strcasecmp(mode.c_str(), "octet") != 0) return Refuse(client, 4, "Only octet mode");
    const std::string path = settings.directory + "/" + name;
    if (!IsInside(name) || !IsRegularFile(path)) return Refuse(client, 1, "No such file");
    std::ifstream stream(path, std::ios::binary);
    if (!stream) return Refuse(client, 2, "May not be read");
    const Octets file((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    if (file.size() > longestFile) return Refuse(client, 0, "More than 65535 blocks");

    if (transfers.size() == mostTransfers) transfers.pop_front();
    transfers.push_back({UdpSocket({listener.At().host, 0}), client, file, 1, 0, 0});
    SendBlock(transfers.back());
}

void TftpServer::Refuse(const Endpoint& client, unsigned int code, const char* text) {
    UdpSocket({listener.At().host, 0}).Send(client, ErrorPacket(code, text));
}

// Returns whether the transfer goes on.
bool TftpServer::Continue(Transfer& transfer, const Endpoint& sender, const Octets& packet) {
    if (sender != transfer.client) {
        transfer.socket.Send(sender, ErrorPacket(5, "Not your transfer"));
        return true;
    }
    if (packet.size() < 4) return true;
    if (NumberAt(packet, 0) == error) return false;
    if (NumberAt(packet, 0) != acknowledgement) return true;
    const unsigned int acknowledged = NumberAt(packet, 2);
    if (acknowledged == transfer.block) {
        if (transfer.file.size() < transfer.block * blockLength) return false;
        ++transfer.block;
        transfer.resends = 0;
        SendBlock(transfer);
    } else if (acknowledged + 1 == transfer.block) {
        Repeat(transfer);
    }
    return true;
}

void TftpServer::Repeat(Transfer& transfer) {
    if (Now() - transfer.sentAt >= settings.repeatAfter) SendBlock(transfer);
}

bool TftpServer::Resend(Transfer& transfer) {
    if (++transfer.resends > settings.resends) return false;
    SendBlock(transfer);
    return true;
}

void TftpServer::SendBlock(Transfer& transfer) {
    const std::size_t start = (transfer.block - 1) * blockLength;
    transfer.socket.Send(transfer.client, Number(dataBlock) + Number(transfer.block) +
                                              transfer.file.substr(start, blockLength));
    transfer.sentAt = Now();
}
