#include "Download.h"

#include <errno.h>
#include <netdb.h>
#include <netinet/in.h>
#include <signal.h>
#include <string.h>
#include <unistd.h>

#include "TqTftp.h"

namespace {

const unsigned int mostBytes = 1024 * 1024;

// Once its time-out has run out, the client waits for a datagram without an end. A signal now and
// then interrupts that, and what may have been lost is sent again.
const unsigned int secondsBetweenSignals = 5;
const int mostSignals = 6;
volatile sig_atomic_t signalsWithoutBlock = 0;

void OnAlarm(int) {
    static const char message[] = ": the TFTP server does not answer\n";
    alarm(secondsBetweenSignals);
    if (++signalsWithoutBlock < mostSignals) return;
    const char* name = program_invocation_short_name;
    ssize_t written = write(STDERR_FILENO, name, strlen(name));
    written += write(STDERR_FILENO, message, sizeof message - 1);
    static_cast<void>(written);  // there is nobody else to tell
    _exit(1);
}

// Finds the IPv4 address of a host, in network byte order. Returns 0, or what went wrong.
int Resolve(const char* server, unsigned int& address) {
    addrinfo hints = addrinfo();
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_DGRAM;
    addrinfo* found = nullptr;
    const int result = getaddrinfo(server, nullptr, &hints, &found);
    if (result != 0) return result;
    sockaddr_in internetAddress;
    memcpy(&internetAddress, found->ai_addr, sizeof internetAddress);
    address = internetAddress.sin_addr.s_addr;
    freeaddrinfo(found);
    return 0;
}

const char* Describe(unsigned int result) {
    if (result == TFTP_NO_SOCKET) return "no socket";
    if (result == TFTP_NO_MEMORY) return "no memory";
    if (result == TFTP_NOT_SENT) return "the request could not be sent";
    if (result == TFTP_VIOLATION) return "the server does not keep to the protocol";
    if (result == TFTP_SERVER_ERROR + 1) return "no such file on the server";
    if (result == TFTP_SERVER_ERROR + 2) return "the server denies access";
    const bool refused = result >= TFTP_SERVER_ERROR && result <= TFTP_SERVER_ERROR + 8;
    return refused ? "the server refuses" : "it failed";
}

// Fetches block after block. Returns 0, or what went wrong.
unsigned int Transfer(TFTP_OPEN_STRUCT& request, TqBuffer& content) {
    const unsigned int result = TFTP_open(&request);
    if (result != 0) return result;
    while (TFTP_eof() == 0 && content.length <= mostBytes) {
        unsigned int length = 0;
        const unsigned char* block = TFTP_read(&length);
        if (block == nullptr) return length;
        signalsWithoutBlock = 0;
        content.Append(block, length);
    }
    TFTP_close();
    return 0;
}

}  // namespace

bool Download(const char* server, const char* fileName, TqBuffer& content, TqString& complaint) {
    TFTP_OPEN_STRUCT request = {0, fileName, "octet"};
    const int resolved = Resolve(server, request.serverAddress);
    if (resolved != 0) {
        complaint = TqString(server) + ": " + gai_strerror(resolved);
        return false;
    }

    struct sigaction action;
    memset(&action, 0, sizeof action);
    action.sa_handler = OnAlarm;  // and no SA_RESTART: calls are to return
    sigaction(SIGALRM, &action, nullptr);
    signalsWithoutBlock = 0;
    alarm(secondsBetweenSignals);
    const unsigned int result = Transfer(request, content);
    alarm(0);
    if (result == 0 && content.length <= mostBytes) return true;

    complaint = TqString(fileName) + " from " + server + ": ";
    if (result == 0) {
        complaint += "too large";
        return false;
    }
    (complaint += Describe(result)) += " (";
    complaint.AppendCounter(result);
    complaint.AppendChar(')');
    return false;
}
