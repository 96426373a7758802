// tftpserve: serves the files below a directory by TFTP on loopback, by itself or for the time that
// another program runs:
//
//     tftpserve [-n] DIRECTORY [COMMAND [ARGUMENT...]]
//
// With -n all this happens in a network of its own, where port 69 can be had without being root.
// The command finds the server at 127.0.0.1 as soon as it starts, and its exit status is the
// server's.

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <exception>

#include "OwnNetwork.h"
#include "TftpServer.h"

namespace {

const Endpoint address = {INADDR_LOOPBACK, 69};

// Leaves a child behind that serves as long as this process lives.
void ServeInBackground(TftpServer& server) {
    const pid_t parent = getpid();
    if (fork() != 0) return;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) _exit(1);
    while (true) server.Serve(60000);
}

int Run(bool hasOwnNetwork, const char* directory, char** command) {
    if (hasOwnNetwork) {
        const std::string problem = EnterOwnNetwork();
        if (!problem.empty()) {
            std::fprintf(stderr, "tftpserve: %s\n", problem.c_str());
            return 1;
        }
    }
    TftpServer::Settings settings;
    settings.directory = directory;
    TftpServer server(UdpSocket(address), settings);
    if (command[0] == nullptr) {
        std::printf("serving %s at %s\n", directory, ToText(address).c_str());
        std::fflush(stdout);
        while (true) server.Serve(60000);
    }
    ServeInBackground(server);
    execvp(command[0], command);
    std::fprintf(stderr, "tftpserve: %s: %s\n", command[0], std::strerror(errno));
    return 127;
}

}  // namespace

int main(int argc, char** argv) {
    const bool hasOwnNetwork = argc > 1 && std::strcmp(argv[1], "-n") == 0;
    char** arguments = argv + (hasOwnNetwork ? 2 : 1);
    if (arguments[0] == nullptr || arguments[0][0] == '-') {
        std::fprintf(stderr, "usage: tftpserve [-n] DIRECTORY [COMMAND [ARGUMENT...]]\n");
        return 2;
    }
    try {
        return Run(hasOwnNetwork, arguments[0], arguments + 1);
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "tftpserve: %s\n", problem.what());
        return 1;
    }
}
