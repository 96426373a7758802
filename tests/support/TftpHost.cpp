#include "TftpHost.h"

#include "OwnNetwork.h"

namespace {

// Taken before main, since children have the hosts of their parent.
const std::uint32_t ownAddresses = 0x7F000000u | (static_cast<std::uint32_t>(getpid()) & 0xFFFFu)
                                                     << 8;

std::string FindNetwork(bool& isOwn) {
    const std::string problem = EnterOwnNetwork();
    isOwn = problem.empty();
    if (isOwn) return problem;
    try {
        UdpSocket probe(RequestPort());
        return std::string();
    } catch (const std::system_error& error) {
        return problem + "; without one: " + error.what();
    }
}

bool isOwnNetwork;

}  // namespace

const std::string& TftpNetworkProblem() {
    static const std::string problem = FindNetwork(isOwnNetwork);
    return problem;
}

bool HasOwnNetwork() {
    return TftpNetworkProblem().empty() && isOwnNetwork;
}

std::uint32_t Host(unsigned int number) {
    return ownAddresses | number;
}

Endpoint RequestPort(unsigned int hostNumber) {
    return {Host(hostNumber), 69};
}
