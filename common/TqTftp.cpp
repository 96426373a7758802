#include "TqTftp.h"

#include <netinet/in.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "internal/TqPrivate.h"

namespace {

const char sourceName[] = "TqTftp";

const unsigned short serverPort = 69;

const unsigned int firstTimeout = 4000;
const unsigned int longestTimeout = 60000;

enum Opcode : unsigned int { readRequest = 1, dataBlock = 3, acknowledgement = 4, error = 5 };

const unsigned int headerLength = 4;
const unsigned int blockLength = 512;
const unsigned int packetLength = headerLength + blockLength;

// Zero before the first transfer, the descriptor too: the state then needs no initialiser at load
// time. The header warns of what closing does as long as that is so.
struct Transfer {
    int descriptor;
    sockaddr_in server;
    unsigned char acknowledgement[headerLength];
    unsigned char* request;  // until the first block has come
    unsigned int requestLength;
    // At the beginning of a line of the cache, whose length the processors' words suggest: the
    // system copies a packet to there in less time.
    alignas(8 * sizeof(void*)) unsigned char received[packetLength];
    unsigned int errorLength;  // of the text, once an error packet is what was received last
    unsigned int endOfFile;
    TFTP_TO_STRUCT timeout;
};

Transfer transfer;

void PutNumber(unsigned char* to, unsigned int number) {
    to[0] = static_cast<unsigned char>(number >> 8);
    to[1] = static_cast<unsigned char>(number);
}

unsigned int GetNumber(const unsigned char* from) {
    return static_cast<unsigned int>(from[0] << 8 | from[1]);
}

// Returns whether the packet was sent whole.
bool Send(const sockaddr_in& to, const unsigned char* packet, unsigned int length) {
    const ssize_t sent = sendto(transfer.descriptor, packet, length, 0,
                                reinterpret_cast<const sockaddr*>(&to), sizeof to);
    return sent == static_cast<ssize_t>(length);
}

void SendAcknowledgement() {
    Send(transfer.server, transfer.acknowledgement, sizeof transfer.acknowledgement);
}

unsigned int AcknowledgedBlock() {
    return GetNumber(transfer.acknowledgement + 2);
}

void SetAcknowledgedBlock(unsigned int block) {
    PutNumber(transfer.acknowledgement, acknowledgement);
    PutNumber(transfer.acknowledgement + 2, block);
}

void ReleaseRequest() {
    std::free(transfer.request);
    transfer.request = nullptr;
}

unsigned int CloseAndReturn(unsigned int result) {
    TFTP_close();
    return result;
}

// A descriptor that select cannot hold is as good as none. Returns -1 for both.
int NewSocket() {
    const int descriptor = socket(AF_INET, SOCK_DGRAM, 0);
    if (descriptor < FD_SETSIZE) return descriptor;
    close(descriptor);
    return -1;
}

int BindAnywhere() {
    sockaddr_in any = sockaddr_in();
    any.sin_family = AF_INET;
    any.sin_addr.s_addr = htonl(INADDR_ANY);
    return bind(transfer.descriptor, reinterpret_cast<const sockaddr*>(&any), sizeof any);
}

// Kept until the first block: it is what is sent again while nothing has come.
bool BuildRequest(const TFTP_OPEN_STRUCT& wanted) {
    const std::size_t nameLength = std::strlen(wanted.fileName) + 1;
    const std::size_t modeLength = std::strlen(wanted.mode) + 1;
    transfer.request = static_cast<unsigned char*>(std::malloc(2 + nameLength + modeLength));
    if (transfer.request == nullptr) return false;
    transfer.requestLength = static_cast<unsigned int>(2 + nameLength + modeLength);
    PutNumber(transfer.request, readRequest);
    std::memcpy(transfer.request + 2, wanted.fileName, nameLength);
    std::memcpy(transfer.request + 2 + nameLength, wanted.mode, modeLength);
    return true;
}

void SetServer(unsigned int address) {
    transfer.server = sockaddr_in();
    transfer.server.sin_family = AF_INET;
    transfer.server.sin_port = htons(serverPort);
    transfer.server.sin_addr.s_addr = address;
}

// Sends the last packet again when the time-out has run out. Returns the milliseconds left.
unsigned int ResendIfExpired() {
    unsigned int expired;
    const unsigned int left = TFTP_timeout_left(&transfer.timeout, &expired);
    if (expired == 0) return left;
    if (transfer.request != nullptr) {
        Send(transfer.server, transfer.request, transfer.requestLength);
    } else {
        SendAcknowledgement();
    }
    return left;
}

// Waits whole seconds only, so that the last one of every time-out is no wait at all. Whatever
// select says, the caller then receives, which blocks: applications pace the client with a signal,
// and a receive that did not wait would turn theirs into a busy loop.
void WaitForDatagram(unsigned int left) {
    fd_set readable;
    FD_ZERO(&readable);
    FD_SET(transfer.descriptor, &readable);
    timeval wait = timeval();
    wait.tv_sec = static_cast<time_t>(left / 1000);
    const int ready = select(transfer.descriptor + 1, &readable, nullptr, nullptr, &wait);
    if (ready < 0) {
        std::printf("(%s, %i): select() failed (%i) .\r\n", sourceName, __LINE__, errno);
    } else if (ready == 0) {
        std::printf("(%s, %i): select() timeout  .\r\n", sourceName, __LINE__);
    }
}

// Returns the length the datagram had, which may exceed what was kept of it, or -1.
ssize_t Receive(sockaddr_in& sender) {
    sender = sockaddr_in();
    socklen_t senderLength = sizeof sender;
    return recvfrom(transfer.descriptor, transfer.received, sizeof transfer.received, MSG_TRUNC,
                    reinterpret_cast<sockaddr*>(&sender), &senderLength);
}

// Before the first block any port of the server's host will do: the transfer port is learnt from
// that block. Later a stranger's port is told off; another host never gets an answer.
bool IsFromServer(const sockaddr_in& sender) {
    if (sender.sin_addr.s_addr != transfer.server.sin_addr.s_addr) return false;
    if (AcknowledgedBlock() == 0 || sender.sin_port == transfer.server.sin_port) return true;
    Send(sender, _tftp_error_tid, sizeof _tftp_error_tid);
    return false;
}

enum Meaning { nextBlock, repeatedBlock, serverError, violation };

// The length is checked before the content. A datagram longer than the buffer still counts as an
// error packet when it is one, but never as a block. Block numbers do not wrap around, so the block
// after number 65535 is a violation: a server that starts again at 0 or 1 would otherwise be taken
// for one that repeats, and the file would be cut or doubled.
Meaning MeaningOf(std::size_t length) {
    if (length < headerLength) return violation;
    const unsigned int opcode = GetNumber(transfer.received);
    if (opcode == error) return serverError;
    if (opcode != dataBlock || length > packetLength) return violation;
    const unsigned int block = GetNumber(transfer.received + 2);
    if (block == AcknowledgedBlock()) return repeatedBlock;
    return block == AcknowledgedBlock() + 1 ? nextBlock : violation;
}

unsigned char* Fail(unsigned int result, unsigned int* length) {
    *length = result;
    TFTP_close();
    return nullptr;
}

void KeepErrorText(std::size_t received) {
    const std::size_t kept = received < packetLength ? received : packetLength;
    transfer.errorLength = static_cast<unsigned int>(kept) - headerLength;
}

unsigned char* AcceptBlock(const sockaddr_in& sender, unsigned int received, unsigned int* length) {
    // The port from which the first block comes is the transfer's; the request has then been heard
    // and is not needed any more.
    TFTP_timeout_update(&transfer.timeout);
    if (AcknowledgedBlock() == 0) {
        transfer.server.sin_port = sender.sin_port;
        ReleaseRequest();
    }
    SetAcknowledgedBlock(AcknowledgedBlock() + 1);
    SendAcknowledgement();
    transfer.endOfFile = received < packetLength ? 1 : 0;
    *length = received - headerLength;
    return transfer.received + headerLength;
}

// The gains of an eighth and a quarter are shifts: they round toward the smaller number, and the
// figures of the time-outs depend on it.
int RightShifted(unsigned int value, int bits) {
    return static_cast<int>(value) >> bits;  // arithmetic with every compiler in use
}

// Neither may become 0: a time-out of nothing would send without an end.
unsigned int AtLeastOne(unsigned int value) {
    return value == 0 ? 1 : value;
}

void TakeSample(TFTP_TO_STRUCT* to, unsigned int elapsed) {
    const unsigned int deviation = elapsed - to->smoothedRtt;
    // All in 32 bits without a sign, so that a clock that wraps around between two readings gives
    // the same difference; only here is it taken for the signed number that it is.
    const unsigned int distance = static_cast<int>(deviation) < 0 ? 0 - deviation : deviation;
    to->smoothedRtt += static_cast<unsigned int>(RightShifted(deviation, 3));
    to->smoothedRtt = AtLeastOne(to->smoothedRtt);
    to->rttVariance += static_cast<unsigned int>(RightShifted(distance - to->rttVariance, 2));
    to->rttVariance = AtLeastOne(to->rttVariance);
    // Four deviations cover nearly every late answer, by the rule of thumb of all such timers.
    to->timeout = to->smoothedRtt + 4 * to->rttVariance;
}

}  // namespace

const unsigned char _tftp_error_exists[34] = "\0\5\0\6File Already Exists";
const unsigned char _tftp_error_nofile[34] = "\0\5\0\1File Not Found";
const unsigned char _tftp_error_to[34] = "\0\5\0\0Excessive Retransmissions";
const unsigned char _tftp_error_busy[34] = "\0\5\0\0TFTP Server Busy";
const unsigned char _tftp_error_srv[34] = "\0\5\0\0TFTP Server Failure";
const unsigned char _tftp_error_accvio[34] = "\0\5\0\2Access Violation";
const unsigned char _tftp_error_op[34] = "\0\5\0\4Illegal Operation";
const unsigned char _tftp_error_tid[34] = "\0\5\0\5Invalid TID";

unsigned int TFTP_open(void* request) {
    const TFTP_OPEN_STRUCT& wanted = *static_cast<const TFTP_OPEN_STRUCT*>(request);
    transfer.errorLength = 0;
    const int descriptor = NewSocket();
    if (descriptor < 0) return TFTP_NO_SOCKET;
    // A transfer that was never closed loses its descriptor here: before the first transfer it is
    // 0, and closing that would close the standard input of a process that has opened nothing yet.
    ReleaseRequest();
    transfer.descriptor = descriptor;
    const int bound = BindAnywhere();
    if (bound != 0) return CloseAndReturn(static_cast<unsigned int>(bound));
    if (!BuildRequest(wanted)) return CloseAndReturn(TFTP_NO_MEMORY);
    SetServer(wanted.serverAddress);
    TFTP_timeout_init(&transfer.timeout);
    if (!Send(transfer.server, transfer.request, transfer.requestLength)) {
        return CloseAndReturn(TFTP_NOT_SENT);
    }
    SetAcknowledgedBlock(0);
    transfer.endOfFile = 0;
    return 0;
}

unsigned char* TFTP_read(unsigned int* length) {
    // As after a failed receive: nobody sent anything, so nobody gets an answer.
    if (transfer.descriptor < 0) return Fail(TFTP_VIOLATION, length);
    // The time between two reads is the caller's, so the first wait of a read is never a sample;
    // and since every read restarts, none ever is. Servers are tuned to the pace that follows from
    // it.
    TFTP_timeout_restart(&transfer.timeout);
    for (;;) {
        WaitForDatagram(ResendIfExpired());
        sockaddr_in sender;
        const ssize_t received = Receive(sender);
        if (received < 0 && errno == EINTR) continue;
        if (received < 0) return Fail(TFTP_VIOLATION, length);
        if (!IsFromServer(sender)) continue;
        switch (MeaningOf(static_cast<std::size_t>(received))) {
            case nextBlock:
                return AcceptBlock(sender, static_cast<unsigned int>(received), length);
            case repeatedBlock:
                TFTP_timeout_restart(&transfer.timeout);
                SendAcknowledgement();
                break;
            case serverError:
                KeepErrorText(static_cast<std::size_t>(received));
                return Fail(TFTP_SERVER_ERROR + GetNumber(transfer.received + 2), length);
            case violation:
                Send(sender, _tftp_error_op, sizeof _tftp_error_op);
                return Fail(TFTP_VIOLATION, length);
        }
    }
}

unsigned int TFTP_eof() {
    return transfer.endOfFile;
}

const unsigned char* TFTP_error_text(unsigned int* length) {
    *length = transfer.errorLength;
    return transfer.received + headerLength;
}

unsigned int TFTP_close() {
    ReleaseRequest();
    if (transfer.descriptor == -1) return TFTP_NOT_OPEN;
    const int result = close(transfer.descriptor);
    transfer.endOfFile = 1;
    transfer.descriptor = -1;
    return static_cast<unsigned int>(result);
}

unsigned int TFTP_timeout_init(TFTP_TO_STRUCT* to) {
    to->startTime = RTCS_time_get();
    to->sampleValid = 1;
    to->timeout = firstTimeout;
    to->smoothedRtt = firstTimeout;
    to->rttVariance = 0;
    return to->timeout;
}

unsigned int TFTP_timeout_restart(TFTP_TO_STRUCT* to) {
    to->startTime = RTCS_time_get();
    to->sampleValid = 0;
    return to->timeout;
}

unsigned int TFTP_timeout_update(TFTP_TO_STRUCT* to) {
    const unsigned int now = RTCS_time_get();
    if (to->sampleValid == 1) TakeSample(to, now - to->startTime);
    to->sampleValid = 1;
    to->startTime = now;
    return to->timeout;
}

unsigned int TFTP_timeout_left(TFTP_TO_STRUCT* to, unsigned int* expired) {
    const unsigned int now = RTCS_time_get();
    const unsigned int elapsed = now - to->startTime;
    const bool hasExpired = elapsed >= to->timeout;
    if (expired != nullptr) *expired = hasExpired ? 1 : 0;
    if (!hasExpired) return to->timeout - elapsed;
    to->startTime = now;
    to->sampleValid = 0;
    // Compared before it is doubled: twice a large time-out would wrap around.
    to->timeout = to->timeout > longestTimeout / 2 ? longestTimeout : 2 * to->timeout;
    return to->timeout;
}

unsigned int RTCS_time_get() {
    timeval now;
    gettimeofday(&now, nullptr);
    // In 32 bits it wraps around every 49.7 days, which subtractions do not mind.
    const unsigned int seconds = static_cast<unsigned int>(now.tv_sec);
    const unsigned int microseconds = static_cast<unsigned int>(now.tv_usec);
    return seconds * 1000 + microseconds / 1000 + (microseconds % 1000 > 500 ? 1 : 0);
}
