#ifndef TFTP_HOST_H
#define TFTP_HOST_H

#include <string>

#include "UdpSocket.h"

/// What the TFTP tests need of the network: loopback, with port 69. Tests have it in a network of
/// their own; where that is not allowed they use the machine's loopback, provided that port 69 is
/// free and theirs to bind.
///
///     if (!TftpNetworkProblem().empty()) GTEST_SKIP() << TftpNetworkProblem();
const std::string& TftpNetworkProblem();

/// Whether this process is in a network of its own.
bool HasOwnNetwork();

/// One of the hosts of the tests, 1 to 254: an address on loopback that is this process's alone, so
/// that tests may run side by side.
std::uint32_t Host(unsigned int number);

/// Where requests go.
Endpoint RequestPort(unsigned int hostNumber = 1);

#endif
