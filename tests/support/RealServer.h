#ifndef REAL_SERVER_H
#define REAL_SERVER_H

#include <memory>
#include <string>

#include "Child.h"

/// A TFTP server as distributions ship it, on host 1 for as long as the object lives.
class RealServer {
public:
    enum Program { tftpdHpa, dnsmasq };

    /// Why the program cannot run here; empty when it can.
    static std::string Problem(Program program);

    /// Serves a directory, and answers from now on. Throws when it does not.
    RealServer(Program program, const std::string& directory);

private:
    std::unique_ptr<Child> child;
};

#endif
