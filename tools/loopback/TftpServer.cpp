#include "TftpServer.h"

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <strings.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <sstream>
#include <vector>

namespace {

const std::size_t blockLength = 512;
const off_t longestFile = 65536 * blockLength - blockLength - 1;
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

bool IsError(const Octets& packet) {
    return packet.size() >= 2 && NumberAt(packet, 0) == error;
}

// A name that leads out of the directory is nobody's business.
bool IsInside(const std::string& name) {
    return !name.empty() && name[0] != '/' && ("/" + name + "/").find("/../") == std::string::npos;
}

bool IsRegularFile(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

// Without links and ".."; empty when there is no such file.
std::string TruePath(const std::string& path) {
    const std::unique_ptr<char, decltype(&free)> found(realpath(path.c_str(), nullptr), &free);
    return found ? found.get() : std::string();
}

/// A file that is open as long as the object lives.
class OpenFile {
public:
    explicit OpenFile(int opened) : descriptor(opened) {}
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile() {
        if (descriptor >= 0) close(descriptor);
    }

    // Goes on to a file of this directory, which is no link.
    void Enter(const std::string& name, int flags) {
        const int next = openat(descriptor, name.c_str(), flags | O_NOFOLLOW | O_CLOEXEC);
        if (descriptor >= 0) close(descriptor);
        descriptor = next;
    }

    int Descriptor() const { return descriptor; }

private:
    int descriptor;
};

// The path below `directory` that a name stands for, with links followed; empty when there is no
// such file, or when it is somewhere else.
std::string PathBelow(const std::string& directory, const std::string& name) {
    const std::string root = TruePath(directory);
    const std::string path = TruePath(root + "/" + name);
    const std::string start = root == "/" ? root : root + "/";
    return path.compare(0, start.size(), start) == 0 ? path.substr(start.size()) : std::string();
}

// Opens a file by its true path. Should somebody put a link there meanwhile, it is not followed.
void OpenBelow(OpenFile& file, const std::string& path) {
    std::istringstream names(path);
    std::string name;
    while (std::getline(names, name, '/')) {
        file.Enter(name, names.eof() ? O_RDONLY | O_NONBLOCK : O_PATH | O_DIRECTORY);
    }
}

bool ReadAll(int descriptor, Octets& file) {
    char bytes[65536];
    ssize_t count;
    while ((count = read(descriptor, bytes, sizeof bytes)) > 0) {
        file.append(bytes, static_cast<std::size_t>(count));
    }
    return count == 0;
}

}  // namespace

TftpServer::TftpServer(UdpSocket taken, Settings wanted)
    : listener(std::move(taken)), settings(std::move(wanted)) {
    CheckDirectory(settings.directory);
}

void TftpServer::CheckDirectory(const std::string& directory) {
    // The point asks for what serving takes: to search the directory.
    const OpenFile opened(open((directory + "/.").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened.Descriptor() >= 0) return;
    throw std::system_error(errno, std::generic_category(), directory);
}

void TftpServer::Wait(int milliseconds, const sigset_t* blocked) const {
    std::vector<pollfd> waiting = {{listener.Descriptor(), POLLIN, 0}};
    for (const Transfer& transfer : transfers) {
        waiting.push_back({transfer.socket.Descriptor(), POLLIN, 0});
        if (settings.resendAfter == 0) continue;
        const long long left = transfer.sentAt + settings.resendAfter - Now();
        milliseconds = static_cast<int>(std::max(0LL, std::min<long long>(left, milliseconds)));
    }
    const timespec time = {milliseconds / 1000, milliseconds % 1000 * 1000000};
    ppoll(waiting.data(), waiting.size(), &time, blocked);
}

void TftpServer::Serve(int milliseconds, const sigset_t* blocked) {
    Wait(milliseconds, blocked);
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
    if (IsError(request)) return;
    for (Transfer& transfer : transfers) {
        if (transfer.client == client) return Repeat(transfer);
    }
    if (request.size() < 4 || NumberAt(request, 0) != readRequest || request.back() != '\0') {
        return Refuse(client, 4, "Only read requests");
    }
    const std::string name = request.c_str() + 2;
    const std::string mode = request.c_str() + std::min(2 + name.size() + 1, request.size() - 1);
    if (strcasecmp(mode.c_str(), "octet") != 0) return Refuse(client, 4, "Only octet mode");
    Send(client, name);
}

void TftpServer::Send(const Endpoint& client, const std::string& name) {
    const std::string path = PathBelow(settings.directory, name);
    if (!IsInside(name) || path.empty() || !IsRegularFile(settings.directory + "/" + path)) {
        return Refuse(client, 1, "No such file");
    }
    OpenFile opened(open(settings.directory.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    OpenBelow(opened, path);
    struct stat status;
    if (fstat(opened.Descriptor(), &status) != 0) return Refuse(client, 2, "May not be read");
    if (status.st_size > longestFile) return Refuse(client, 0, "More than 65535 blocks");
    Octets file;
    if (!ReadAll(opened.Descriptor(), file)) return Refuse(client, 0, "Cannot be read");

    if (transfers.size() == mostTransfers) transfers.pop_front();
    transfers.push_back({UdpSocket({listener.At().host, 0}), client, file, 1, 0, 0});
    SendBlock(transfers.back());
}

void TftpServer::Refuse(const Endpoint& client, unsigned int code, const char* text) {
    UdpSocket({listener.At().host, 0}).Send(client, ErrorPacket(code, text));
}

// Returns whether the transfer goes on.
bool TftpServer::Continue(Transfer& transfer, const Endpoint& sender, const Octets& packet) {
    if (IsError(packet)) return sender != transfer.client;
    if (sender != transfer.client) {
        transfer.socket.Send(sender, ErrorPacket(5, "Not your transfer"));
        return true;
    }
    if (packet.size() < 4) return true;
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
