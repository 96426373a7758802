// tftpserve: serves the files below a directory by TFTP on loopback, by itself or for the time that
// another program runs. The usage text below says how.

#include <cstdio>
#include <cstring>
#include <exception>

#include "Command.h"
#include "OwnNetwork.h"
#include "TftpServer.h"

namespace {

const Endpoint address = {INADDR_LOOPBACK, 69};

const char usage[] =
    "usage: tftpserve [-n] DIRECTORY [COMMAND [ARGUMENT...]]\n"
    "Serves the files below DIRECTORY by TFTP at 127.0.0.1, port 69; with COMMAND for as long as\n"
    "that runs. Links out of DIRECTORY are not followed.\n"
    "\n"
    "  -n      do all this in a network of its own, where the port can be had without being root\n"
    "  --help  show this, and exit\n"
    "\n"
    "A signal that ends tftpserve is passed on to the command, which has two seconds to end.\n"
    "\n"
    "Exit status: the command's, or 128 plus the number of the signal that ended it; 127 when it\n"
    "cannot be started; 1 when there is nothing to serve or no port to serve it at; 2 when the\n"
    "command line is wrong.\n";

int Run(bool hasOwnNetwork, const char* directory, char** command) {
    TftpServer::CheckDirectory(directory);
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
    if (command[0] != nullptr) return ServeCommand(server, command);
    std::printf("serving %s at %s\n", directory, ToText(address).c_str());
    std::fflush(stdout);
    while (true) server.Serve(60000);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc > 1 && std::strcmp(argv[1], "--help") == 0) {
        std::fputs(usage, stdout);
        return 0;
    }
    const bool hasOwnNetwork = argc > 1 && std::strcmp(argv[1], "-n") == 0;
    char** arguments = argv + (hasOwnNetwork ? 2 : 1);
    if (argc < 2 || arguments[0] == nullptr || arguments[0][0] == '-') {
        std::fputs(usage, stderr);
        return 2;
    }
    try {
        return Run(hasOwnNetwork, arguments[0], arguments + 1);
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "tftpserve: %s\n", problem.what());
        return 1;
    }
}
