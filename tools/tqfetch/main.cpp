// tqfetch: fetches a file from a TFTP server. Its man page is tqfetch.1.

#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string>

#include "Message.h"
#include "Netascii.h"
#include "Options.h"
#include "Outcome.h"
#include "Patience.h"
#include "Progress.h"
#include "TargetFile.h"
#include "TqTftp.h"

namespace {

const unsigned int mostBlocks = 65535;

Farewell FarewellOf(const Options& options, const Outcome& outcome) {
    const std::string text = options.server + ": " + options.file + ": " + outcome.sentence;
    return {"tqfetch: " + Shown(text) + "\n", outcome.status};
}

// What is opened must not take the place of a standard descriptor that the parent closed: messages
// would end up in the file.
void OccupyStandardDescriptors() {
    int descriptor;
    do {
        descriptor = open("/dev/null", O_RDONLY);
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    if (descriptor >= 0) close(descriptor);
}

// The client prints to standard output what select does; it must neither mix with the file nor
// trouble anybody.
void SilenceStandardOutput() {
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere < 0) return;
    dup2(nowhere, STDOUT_FILENO);
    close(nowhere);
}

// Finds the IPv4 address, in network byte order. Returns what is wrong, or nothing.
std::string Resolve(const Options& options, unsigned int& address) {
    addrinfo wanted = addrinfo();
    wanted.ai_family = AF_INET;
    wanted.ai_socktype = SOCK_DGRAM;
    addrinfo* found = nullptr;
    const Farewell late = FarewellOf(options, {exitUnknownHost, "no answer from the name service"});
    int error;
    {
        // No ticks: resolvers need not like being interrupted all the time.
        const Limit limit(options.timeout, late);
        error = getaddrinfo(options.server.c_str(), nullptr, &wanted, &found);
    }
    if (error == EAI_SYSTEM) return std::strerror(errno);
    if (error != 0) return gai_strerror(error);
    sockaddr_in first;
    std::memcpy(&first, found->ai_addr, sizeof first);
    address = first.sin_addr.s_addr;
    freeaddrinfo(found);
    return std::string();
}

// Adds the system's reason to a failure of this machine's.
Outcome WithReason(Outcome outcome, int error) {
    if (error != 0) outcome.sentence += std::string(" (") + std::strerror(error) + ")";
    return outcome;
}

// What the server says in its error packet.
std::string ServersWords() {
    unsigned int length = 0;
    const unsigned char* const text = TFTP_error_text(&length);
    const std::string words(reinterpret_cast<const char*>(text), length);
    return words.substr(0, words.find('\0'));
}

// Reads the blocks of the open transfer. Returns how it ended.
Outcome ReadBlocks(const Options& options, TargetFile& target, Progress& progress) {
    const Farewell silence = FarewellOf(options, SilenceOutcome(options.timeout));
    const Farewell tooLarge = FarewellOf(options, TooLargeOutcome());
    const bool isText = options.mode == "netascii";
    NetasciiDecoder decoder;
    unsigned long long bytes = 0;
    for (unsigned int blocks = 0; TFTP_eof() == 0; ++blocks) {
        unsigned int length = 0;
        const unsigned char* data;
        {
            // After the last number, one more read lets the client tell the server.
            const Wait wait(options.timeout, blocks == mostBlocks ? tooLarge : silence);
            data = TFTP_read(&length);
        }
        if (blocks == mostBlocks) return TooLargeOutcome();
        if (data == nullptr) return OutcomeOf(length, ServersWords());
        bytes += length;
        if (isText) {
            const std::string text = decoder.Decode(data, length);
            target.Write(text.data(), text.size());
        } else {
            target.Write(data, length);
        }
        progress.Update(bytes);
    }
    const std::string rest = decoder.End();
    target.Write(rest.data(), rest.size());
    return OutcomeOf(0);
}

Outcome Transfer(const Options& options, unsigned int address, TargetFile& target,
                 Progress& progress) {
    TFTP_OPEN_STRUCT request = {address, options.file.c_str(), options.mode.c_str()};
    errno = 0;
    const unsigned int result = TFTP_open(&request);
    if (result != 0) return WithReason(OutcomeOf(result), errno);
    const Ticks ticks;
    Outcome outcome = ReadBlocks(options, target, progress);
    TFTP_close();
    return outcome;
}

Outcome Fetch(const Options& options) {
    unsigned int address = 0;
    const std::string problem = Resolve(options, address);
    if (!problem.empty()) return {exitUnknownHost, problem};

    TargetFile target(options.output);
    // Nothing is shown to those who pipe, nor on a terminal that takes the file itself.
    Progress progress(!options.isQuiet && !target.IsTerminal() && isatty(STDOUT_FILENO) != 0 &&
                      isatty(STDERR_FILENO) != 0);
    SilenceStandardOutput();
    Outcome outcome = Transfer(options, address, target, progress);
    progress.End();
    if (outcome.status == exitComplete) target.Complete();
    return outcome;
}

int Finish(const Farewell& last) {
    std::fputs(last.text.c_str(), stderr);
    return last.status;
}

}  // namespace

int main(int argc, char** argv) {
    OccupyStandardDescriptors();
    const Options options = ParseArguments(argc, argv);
    HandleSignals();
    const Farewell late = FarewellOf(options, DeadlineOutcome(options.deadline));
    try {
        if (options.deadline != 0) StartDeadline(options.deadline, late);
        const Outcome outcome = Fetch(options);
        if (outcome.status == exitComplete) return exitComplete;
        return Finish(FarewellOf(options, outcome));
    } catch (const std::exception& problem) {
        return Finish({"tqfetch: " + Shown(problem.what()) + "\n", exitLocalFailure});
    }
}
