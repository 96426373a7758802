// tqfetch: fetches a file from a TFTP server. Its man page is tqfetch.1.

#include <arpa/inet.h>
#include <fcntl.h>
#include <getopt.h>
#include <netdb.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <strings.h>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <string>

#include "Netascii.h"
#include "Outcome.h"
#include "Progress.h"
#include "TargetFile.h"
#include "TqTftp.h"

namespace {

const char usage[] =
    "usage: tqfetch [-m octet|netascii] [-o FILE|-] [-t SECONDS] [-q] SERVER FILE\n";

const char help[] =
    "Fetches FILE from the TFTP server SERVER, a host name or an IPv4 address.\n"
    "\n"
    "  -m, --mode=octet|netascii  how the file comes: as it is (the default), or as\n"
    "                             text whose lines are ended as on this system\n"
    "  -o, --output=FILE          where it goes: another file than the one of the same\n"
    "                             name in this directory, or - for standard output\n"
    "  -t, --timeout=SECONDS      give up after so long without a new block; 30\n"
    "  -q, --quiet                show no progress on a terminal\n"
    "  -h, --help                 print this\n";

const unsigned int longestTimeout = 24 * 60 * 60;
const unsigned int mostBlocks = 65535;

struct Options {
    std::string mode = "octet";
    std::string output;
    std::string server;
    std::string file;
    unsigned int timeout = 30;
    bool isQuiet = false;
};

// What ends the program from a signal handler: everything is ready beforehand.
struct Farewell {
    Farewell(const Options& options, const Outcome& outcome)
        : text("tqfetch: " + options.server + ": " + options.file + ": " + outcome.sentence + "\n"),
          status(outcome.status) {}

    std::string text;
    int status;
};

// The client blocks in its receive once its wait is over, and resends only when something
// interrupts the receive. This signal does, so often each second.
const int ticksPerSecond = 5;

// The ticks that are left until nobody believes in a new block any more; 0 while none is awaited.
volatile sig_atomic_t patience = 0;
std::atomic<const Farewell*> farewell(nullptr);

void OnTick(int) {
    if (patience == 0 || --patience != 0) return;
    Progress::EndLine();
    TargetFile::RemoveTemporary();
    const Farewell& last = *farewell.load();
    if (write(STDERR_FILENO, last.text.data(), last.text.size()) < 0) _exit(last.status);
    _exit(last.status);
}

// Tidies up; the signal then does what it does to a program without a handler.
void OnEnd(int number) {
    Progress::EndLine();
    TargetFile::RemoveTemporary();
    raise(number);
}

void Handle(int number, void (*handler)(int), int flags) {
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    sigfillset(&action.sa_mask);
    sigaction(number, &action, nullptr);
}

void HandleSignals() {
    // Without SA_RESTART, or the receive would go on.
    Handle(SIGALRM, OnTick, 0);
    sigset_t ticks;
    sigemptyset(&ticks);
    sigaddset(&ticks, SIGALRM);
    sigprocmask(SIG_UNBLOCK, &ticks, nullptr);
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE}) {
        struct sigaction before;
        sigaction(number, nullptr, &before);
        if (before.sa_handler != SIG_IGN) Handle(number, OnEnd, static_cast<int>(SA_RESETHAND));
    }
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

void StartTicks() {
    itimerval timer = itimerval();
    timer.it_interval.tv_usec = timer.it_value.tv_usec = 1000000 / ticksPerSecond;
    setitimer(ITIMER_REAL, &timer, nullptr);
}

// While this lives, a new block, or whatever else is said in the farewell, is awaited.
class Wait {
public:
    explicit Wait(unsigned int seconds) {
        patience = static_cast<sig_atomic_t>(seconds * ticksPerSecond);
    }
    ~Wait() { patience = 0; }
};

[[noreturn]] void Misused() {
    std::fputs(usage, stderr);
    std::fputs("Try 'tqfetch --help'.\n", stderr);
    std::exit(exitUsage);
}

unsigned int ParseTimeout(const char* text) {
    char* end = nullptr;
    errno = 0;
    const long seconds = std::strtol(text, &end, 10);
    if (end == text || *end != '\0' || errno != 0 || seconds < 1 ||
        seconds > static_cast<long>(longestTimeout)) {
        std::fprintf(stderr, "tqfetch: %s: not a number of seconds from 1 to %u\n", text,
                     longestTimeout);
        std::exit(exitUsage);
    }
    return static_cast<unsigned int>(seconds);
}

std::string ParseMode(const char* text) {
    for (const char* mode : {"octet", "netascii"}) {
        if (strcasecmp(text, mode) == 0) return mode;
    }
    std::fprintf(stderr, "tqfetch: %s: no mode; there are octet and netascii\n", text);
    std::exit(exitUsage);
}

// What stands behind the last slash.
std::string OwnNameFor(const std::string& file) {
    std::string name = file.substr(file.rfind('/') + 1);
    if (name.empty() || name == "." || name == ".." || name == "-") {
        std::fprintf(stderr, "tqfetch: %s: no name for a file here; use -o\n", file.c_str());
        std::exit(exitUsage);
    }
    return name;
}

Options ParseArguments(int argc, char** argv) {
    static const option longOptions[] = {
        {"mode", required_argument, nullptr, 'm'},    {"output", required_argument, nullptr, 'o'},
        {"timeout", required_argument, nullptr, 't'}, {"quiet", no_argument, nullptr, 'q'},
        {"help", no_argument, nullptr, 'h'},          {nullptr, 0, nullptr, 0}};
    Options options;
    int letter;
    while ((letter = getopt_long(argc, argv, "m:o:t:qh", longOptions, nullptr)) != -1) {
        switch (letter) {
            case 'm':
                options.mode = ParseMode(optarg);
                break;
            case 'o':
                options.output = optarg;
                break;
            case 't':
                options.timeout = ParseTimeout(optarg);
                break;
            case 'q':
                options.isQuiet = true;
                break;
            case 'h':
                std::printf("%s%s", usage, help);
                std::exit(std::fflush(stdout) == 0 ? exitComplete : exitLocalFailure);
            default:
                Misused();
        }
    }
    if (argc - optind != 2) Misused();
    options.server = argv[optind];
    options.file = argv[optind + 1];
    if (options.output.empty()) options.output = OwnNameFor(options.file);
    return options;
}

int Fail(const Options& options, const Outcome& outcome) {
    std::fputs(Farewell(options, outcome).text.c_str(), stderr);
    return outcome.status;
}

// Finds the IPv4 address, in network byte order. Returns what is wrong, or nothing.
std::string Resolve(const Options& options, unsigned int& address) {
    addrinfo wanted = addrinfo();
    wanted.ai_family = AF_INET;
    wanted.ai_socktype = SOCK_DGRAM;
    addrinfo* found = nullptr;
    // One signal when the time is up: resolvers need not like being interrupted all the time.
    const Outcome late = {exitUnknownHost, "no answer from the name service"};
    const Farewell last(options, late);
    farewell = &last;
    patience = 1;
    itimerval timer = itimerval();
    timer.it_value.tv_sec = static_cast<time_t>(options.timeout);
    setitimer(ITIMER_REAL, &timer, nullptr);
    const int error = getaddrinfo(options.server.c_str(), nullptr, &wanted, &found);
    patience = 0;
    if (error == EAI_SYSTEM) return std::strerror(errno);
    if (error != 0) return gai_strerror(error);
    sockaddr_in first;
    std::memcpy(&first, found->ai_addr, sizeof first);
    address = first.sin_addr.s_addr;
    freeaddrinfo(found);
    return std::string();
}

// The client prints to standard output what select does; it must neither mix with the file nor
// trouble anybody. Returns what was standard output before, -1 if there was none.
int TakeStandardOutput() {
    const int output = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int nowhere = open("/dev/null", O_WRONLY);
    if (nowhere >= 0 && nowhere != STDOUT_FILENO) {
        dup2(nowhere, STDOUT_FILENO);
        close(nowhere);
    }
    return output;
}

// Adds the system's reason to a failure of this machine's.
Outcome WithReason(Outcome outcome, int error) {
    if (error != 0) outcome.sentence += std::string(" (") + std::strerror(error) + ")";
    return outcome;
}

// Reads the blocks of the open transfer. Returns how it ended.
Outcome ReadBlocks(const Options& options, TargetFile& target, Progress& progress) {
    const Farewell tooLarge(options, TooLargeOutcome());
    const bool isText = options.mode == "netascii";
    NetasciiDecoder decoder;
    unsigned long long bytes = 0;
    for (unsigned int blocks = 0; TFTP_eof() == 0; ++blocks) {
        // One more read lets the client tell the server that it cannot go on.
        if (blocks == mostBlocks) farewell = &tooLarge;
        unsigned int length = 0;
        const unsigned char* data;
        {
            const Wait wait(options.timeout);
            data = TFTP_read(&length);
        }
        if (blocks == mostBlocks) return TooLargeOutcome();
        if (data == nullptr) return OutcomeOf(length);
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
    const Farewell silence(options, SilenceOutcome(options.timeout));
    farewell = &silence;
    errno = 0;
    const unsigned int result = TFTP_open(&request);
    if (result != 0) return WithReason(OutcomeOf(result), errno);
    StartTicks();
    Outcome outcome = ReadBlocks(options, target, progress);
    const itimerval off = itimerval();
    setitimer(ITIMER_REAL, &off, nullptr);
    TFTP_close();
    return outcome;
}

int Fetch(const Options& options) {
    unsigned int address = 0;
    const std::string problem = Resolve(options, address);
    if (!problem.empty()) return Fail(options, {exitUnknownHost, problem});

    // Nothing is shown to those who pipe, nor on a terminal that takes the file itself.
    const bool isShown = !options.isQuiet && options.output != "-" && isatty(STDOUT_FILENO) != 0 &&
                         isatty(STDERR_FILENO) != 0;
    TargetFile target(options.output, TakeStandardOutput());
    Progress progress(isShown);
    const Outcome outcome = Transfer(options, address, target, progress);
    progress.End();
    if (outcome.status != exitComplete) return Fail(options, outcome);
    target.Complete();
    return exitComplete;
}

}  // namespace

int main(int argc, char** argv) {
    OccupyStandardDescriptors();
    const Options options = ParseArguments(argc, argv);
    HandleSignals();
    try {
        return Fetch(options);
    } catch (const std::exception& problem) {
        Progress::EndLine();
        std::fprintf(stderr, "tqfetch: %s\n", problem.what());
        return exitLocalFailure;
    }
}
