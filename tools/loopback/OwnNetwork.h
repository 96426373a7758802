#ifndef OWN_NETWORK_H
#define OWN_NETWORK_H

#include <string>

/// Moves this process, and the children it has from now on, into a network of its own that consists
/// of a loopback interface: there port 69 is free and nothing reaches the machine's network. Needs
/// root, or else user namespaces and a process with one thread.
/// Returns an empty text, or why it was not possible.
std::string EnterOwnNetwork();

#endif
