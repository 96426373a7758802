#ifndef TFTP_ANSWERS_H
#define TFTP_ANSWERS_H

#include <functional>
#include <string>

#include "Child.h"
#include "TftpScript.h"
#include "UdpSocket.h"

/// Servers in processes of their own, for what fetches as a user does. Each ends with its Child.

/// The text form of one of the hosts.
std::string HostName(unsigned int number = 1);

/// Serves a folder from a host.
Child ServeFolder(const std::string& folder, unsigned int host = 1);

/// Answers every datagram that comes to host 1, which nothing else does.
using Answers = std::function<void(const UdpSocket&, const Endpoint& client, const Octets&)>;
Child Answer(const Answers& answer);

/// The block that a request or an acknowledgement wants next.
unsigned int BlockAskedFor(const Octets& datagram);

/// A server that sends so many full blocks and falls silent then.
Child AnswerWithBlocks(unsigned int count);

#endif
