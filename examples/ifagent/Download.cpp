#include "Download.h"

#include <errno.h>
#include <netdb.h>
#include <netinet/in.h>
#include <signal.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include "Complaints.h"
#include "TqTftp.h"

namespace {

const unsigned int mostBytes = 1024 * 1024;

// Once its time-out has run out, the client waits for a datagram without an end. A signal now and
// then interrupts that, and what may have been lost is sent again.
const int secondsBetweenSignals = 5;
const int mostSignals = 6;
volatile sig_atomic_t signalsWithoutBlock = 0;

// The configuration is the first thing that is done: there is nothing to tidy up.
void OnAlarm(int) {
    static const char message[] = "ifagent: the TFTP server does not answer\n";
    if (++signalsWithoutBlock < mostSignals) return;
    if (write(STDERR_FILENO, message, sizeof message - 1) < 0) _exit(1);
    _exit(1);
}

void SetTimer(int seconds) {
    itimerval timer;
    memset(&timer, 0, sizeof timer);
    timer.it_interval.tv_sec = seconds;
    timer.it_value.tv_sec = seconds;
    setitimer(ITIMER_REAL, &timer, nullptr);
}

// Interrupts waiting calls as long as it lives.
class PeriodicSignal {
public:
    PeriodicSignal();
    PeriodicSignal(const PeriodicSignal&) = delete;
    PeriodicSignal& operator=(const PeriodicSignal&) = delete;
    ~PeriodicSignal();

private:
    struct sigaction before;
};

PeriodicSignal::PeriodicSignal() {
    struct sigaction action;
    memset(&action, 0, sizeof action);
    action.sa_handler = OnAlarm;  // and no SA_RESTART: calls are to return
    sigaction(SIGALRM, &action, &before);
    signalsWithoutBlock = 0;
    SetTimer(secondsBetweenSignals);
}

PeriodicSignal::~PeriodicSignal() {
    SetTimer(0);
    sigaction(SIGALRM, &before, nullptr);
}

// Finds the IPv4 address of a host, in network byte order. False after a complaint.
bool Resolve(const char* server, unsigned int& address) {
    addrinfo hints;
    memset(&hints, 0, sizeof hints);
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_DGRAM;
    addrinfo* found = nullptr;
    const int result = getaddrinfo(server, nullptr, &hints, &found);
    if (result != 0) {
        Complain("%s: %s", server, gai_strerror(result));
        return false;
    }
    sockaddr_in internetAddress;
    memcpy(&internetAddress, found->ai_addr, sizeof internetAddress);
    address = internetAddress.sin_addr.s_addr;
    freeaddrinfo(found);
    return true;
}

const char* Describe(unsigned int result) {
    const unsigned int largestServerError = 8;
    switch (result) {
        case TFTP_NO_SOCKET:
            return "no socket";
        case TFTP_NO_MEMORY:
            return "no memory";
        case TFTP_NOT_SENT:
            return "the request could not be sent";
        case TFTP_SERVER_ERROR + 1:
            return "no such file on the server";
        case TFTP_SERVER_ERROR + 2:
            return "the server denies access";
        case TFTP_VIOLATION:
            return "the server does not keep to the protocol";
        default:
            return result >= TFTP_SERVER_ERROR && result <= TFTP_SERVER_ERROR + largestServerError
                       ? "the server refuses"
                       : "it failed";
    }
}

// Reads block after block. Returns 0, or what went wrong.
unsigned int ReadBlocks(TqBuffer& content) {
    while (TFTP_eof() == 0) {
        unsigned int length = 0;
        const unsigned char* block = TFTP_read(&length);
        if (block == nullptr) return length;
        signalsWithoutBlock = 0;
        content.Append(block, length);
        if (content.length > mostBytes) break;
    }
    TFTP_close();
    return 0;
}

}  // namespace

bool Download(const char* server, const char* fileName, TqBuffer& content) {
    TFTP_OPEN_STRUCT request = {0, fileName, "octet"};
    if (!Resolve(server, request.serverAddress)) return false;

    const PeriodicSignal periodicSignal;
    unsigned int result = TFTP_open(&request);
    if (result == 0) result = ReadBlocks(content);
    if (result != 0) {
        Complain("%s from %s: %s (%u)", fileName, server, Describe(result), result);
        return false;
    }
    if (content.length > mostBytes) {
        Complain("%s from %s: too large", fileName, server);
        return false;
    }
    return true;
}
