#ifndef UDP_SOCKET_H
#define UDP_SOCKET_H

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <string>
#include <system_error>
#include <utility>

/// The bytes of a packet or of a file.
using Octets = std::string;

/// An IPv4 address and a port, both as plain numbers of this machine.
struct Endpoint {
    std::uint32_t host;
    std::uint16_t port;

    bool operator==(const Endpoint& other) const {
        return host == other.host && port == other.port;
    }
    bool operator!=(const Endpoint& other) const { return !(*this == other); }
    bool operator<(const Endpoint& other) const {
        return std::make_pair(host, port) < std::make_pair(other.host, other.port);
    }
};

inline sockaddr_in ToSocketAddress(const Endpoint& endpoint) {
    sockaddr_in address = sockaddr_in();
    address.sin_family = AF_INET;
    address.sin_port = htons(endpoint.port);
    address.sin_addr.s_addr = htonl(endpoint.host);
    return address;
}

inline Endpoint ToEndpoint(const sockaddr_in& address) {
    return {ntohl(address.sin_addr.s_addr), ntohs(address.sin_port)};
}

/// "127.0.0.1:69"
inline std::string ToText(const Endpoint& endpoint) {
    char host[INET_ADDRSTRLEN];
    const in_addr address = {htonl(endpoint.host)};
    inet_ntop(AF_INET, &address, host, sizeof host);
    return host + (":" + std::to_string(endpoint.port));
}

/// Milliseconds of a clock that only goes forward.
inline long long Now() {
    const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(sinceStart).count();
}

/// A UDP socket, open as long as the object lives. Throws std::system_error when the system refuses
/// to open or bind it.
class UdpSocket {
public:
    /// Port 0 is any port.
    explicit UdpSocket(const Endpoint& at)
        : descriptor(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
        const sockaddr_in address = ToSocketAddress(at);
        if (descriptor < 0 ||
            bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
            const std::system_error error(errno, std::generic_category(), ToText(at));
            if (descriptor >= 0) close(descriptor);
            throw error;
        }
    }

    UdpSocket(UdpSocket&& other) noexcept : descriptor(other.descriptor) { other.descriptor = -1; }
    UdpSocket(const UdpSocket&) = delete;
    UdpSocket& operator=(const UdpSocket&) = delete;

    ~UdpSocket() {
        if (descriptor >= 0) close(descriptor);
    }

    int Descriptor() const { return descriptor; }

    Endpoint At() const {
        sockaddr_in address = sockaddr_in();
        socklen_t length = sizeof address;
        getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &length);
        return ToEndpoint(address);
    }

    void Send(const Endpoint& to, const Octets& datagram) const {
        const sockaddr_in address = ToSocketAddress(to);
        sendto(descriptor, datagram.data(), datagram.size(), 0,
               reinterpret_cast<const sockaddr*>(&address), sizeof address);
    }

    /// Waits for the next datagram. False when none has come after so many milliseconds.
    bool Receive(Octets& datagram, Endpoint& sender, int milliseconds) const {
        pollfd ready = {descriptor, POLLIN, 0};
        const long long end = Now() + milliseconds;
        int left = milliseconds;
        while (poll(&ready, 1, left) < 0 && errno == EINTR) {
            left = static_cast<int>(end > Now() ? end - Now() : 0);
        }
        if ((ready.revents & POLLIN) == 0) return false;
        datagram.resize(65536);
        sockaddr_in address = sockaddr_in();
        socklen_t length = sizeof address;
        const ssize_t received = recvfrom(descriptor, &datagram[0], datagram.size(), MSG_DONTWAIT,
                                          reinterpret_cast<sockaddr*>(&address), &length);
        if (received < 0) return false;
        datagram.resize(static_cast<std::size_t>(received));
        sender = ToEndpoint(address);
        return true;
    }

private:
    int descriptor;
};

#endif
