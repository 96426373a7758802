// Whole transfers through a bad network. Every one must end, with the very bytes of the file or
// with a result code.
//
// Time-outs of 4 to 60 seconds are too long to wait for, so the clients' clock runs 10,000 times as
// fast as the real one, and their waits in select are shorter by as much. Where processes and
// packets are slow everything that is timed is as slow, or nobody would wait for an answer.

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <iostream>
#include <random>
#include <sstream>

#include "Child.h"
#include "Files.h"
#include "Scale.h"
#include "SystemCalls.h"
#include "TftpHost.h"
#include "TftpProxy.h"
#include "TftpServer.h"
#include "TftpTest.h"
#include "TqTftp.h"

namespace {

using Troubles = TftpProxy::Troubles;

const int slowness = Slowness();
const int clockSpeed = 10000 / slowness;
const int signalPeriod = 2000 * slowness;  // microseconds
const int longestTest = 280 * slowness;    // seconds

// Milliseconds; a transfer beyond hangs.
const long long longestTransfer = 120 * 1000 * (IsOnDevice() ? 5 : 1);

// One transfer: what is asked for and what the network is like.
struct Case {
    unsigned int seed = 0;
    Octets file = Octets();
    Troubles troubles = Troubles();
    bool hasSignal = true;
    bool mustComplete = false;
    bool mayDiffer = false;
    TftpServer::Settings server = TftpServer::Settings();
};

using Cases = std::function<Case(unsigned int seed)>;

class Dice {
public:
    explicit Dice(unsigned int seed) : random(seed) {}
    unsigned int UpTo(unsigned int most) {
        return static_cast<unsigned int>(random() % (most + 1));
    }

private:
    std::mt19937 random;
};

// A file of up to 200 blocks, one in three of which ends with a full block.
Octets SomeFile(Dice& dice) {
    const std::size_t blocks = dice.UpTo(199);
    const std::size_t tail = dice.UpTo(2) == 0 ? 0 : 1 + dice.UpTo(510);
    return RandomBytes(blocks * 512 + tail, dice.UpTo(1000000));
}

// Some file, from a server that leaves it to the client to resend.
Case SomeCase(unsigned int seed, Dice& dice) {
    Case test;
    test.seed = seed;
    test.file = SomeFile(dice);
    test.server.resendAfter = 0;
    test.server.repeatAfter = 1 * slowness;
    return test;
}

// The client, in a child of the test.

long long hangsAt;
unsigned int presentSeed;

// Interrupts what blocks, and ends what does so for too long.
void OnSignal(int) {
    if (Now() < hangsAt) return;
    dprintf(STDERR_FILENO, "seed %u: hangs\n", presentSeed);
    _exit(1);
}

void StartTimer(bool isPeriodic) {
    struct sigaction action = {};
    action.sa_handler = OnSignal;
    sigaction(SIGALRM, &action, nullptr);
    itimerval timer = itimerval();
    if (isPeriodic) {
        timer.it_interval.tv_usec = timer.it_value.tv_usec = signalPeriod;
    } else {
        timer.it_value.tv_sec = longestTransfer / 1000 + 1;
    }
    setitimer(ITIMER_REAL, &timer, nullptr);
}

void SpeedUpTheClock() {
    using std::chrono::microseconds;
    using std::chrono::steady_clock;
    const auto start = steady_clock::now();
    systemCalls.gettimeofday = [start] {
        const auto real = std::chrono::duration_cast<microseconds>(steady_clock::now() - start);
        const long long fast = real.count() * clockSpeed;
        timeval time = timeval();
        time.tv_sec = static_cast<time_t>(fast / 1000000 % 1000000000);
        time.tv_usec = static_cast<suseconds_t>(fast % 1000000);
        return time;
    };
    systemCalls.select = [](int count, fd_set* readable, timeval* wait) {
        const long long real = static_cast<long long>(wait->tv_sec) * 1000000 / clockSpeed;
        timeval shorter = timeval();
        shorter.tv_sec = static_cast<time_t>(real / 1000000);
        shorter.tv_usec = static_cast<suseconds_t>(real % 1000000);
        return select(count, readable, nullptr, nullptr, &shorter);
    };
}

// Says what is wrong about how a transfer ended; nothing, mostly.
std::string Judge(const Case& test, unsigned int result, const Octets& read) {
    if (result == 0 && read == test.file) return std::string();
    if (result == 0) return test.mayDiffer ? std::string() : "other bytes";
    const bool isStated = test.troubles.corruption == 0
                              ? result == TFTP_VIOLATION
                              : result >= TFTP_SERVER_ERROR && result <= TFTP_SERVER_ERROR + 65535;
    if (!isStated) return "result " + std::to_string(result);
    if (test.mustComplete) return "not complete";
    if (!test.mayDiffer && test.file.compare(0, read.size(), read) != 0) return "not a beginning";
    return std::string();
}

// Reads a whole file with the client alone: the tests bring their own signals, or none, and a clock
// of their own.
unsigned int FetchByTftp(std::uint32_t host, const std::string& name, std::string& data) {
    data.clear();
    TFTP_OPEN_STRUCT request = {htonl(host), name.c_str(), "octet"};
    unsigned int result = TFTP_open(&request);
    while (result == 0 && TFTP_eof() == 0) {
        unsigned int length = 0;
        const unsigned char* block = TFTP_read(&length);
        if (block == nullptr) {
            result = length;
        } else {
            data.append(reinterpret_cast<const char*>(block), length);
        }
    }
    TFTP_close();
    return result;
}

// The hosts and the directory of one worker.
struct Place {
    Endpoint proxy;
    Endpoint server;
    std::string directory;
};

std::string Transfer(const Case& test, const Place& place, unsigned int& result) {
    const std::string name = std::to_string(test.seed);
    const std::string path = place.directory + "/" + name;
    WriteFile(path, test.file);

    TftpServer::Settings settings = test.server;
    settings.directory = place.directory;
    TftpServer server(UdpSocket(place.server), settings);
    TftpProxy proxy(UdpSocket(place.proxy), place.server, test.troubles, test.seed);
    const Child serverChild([&server] {
        while (true) server.Serve(1000);
    });
    const Child proxyChild([&proxy] {
        while (true) proxy.Serve(1000);
    });

    presentSeed = test.seed;
    hangsAt = Now() + longestTransfer;
    WatchMemory(name.size() + 1 + sizeof "octet" + 2);
    StartTimer(test.hasSignal);
    Octets read;
    result = FetchByTftp(place.proxy.host, name, read);
    const itimerval off = itimerval();
    setitimer(ITIMER_REAL, &off, nullptr);
    const int held = WatchedBlocks();
    WatchMemory(0);
    unlink(path.c_str());
    return held == 0 ? Judge(test, result, read) : "the request is still held";
}

// Every so-many-th transfer. Reports each in a line: its result, and what is wrong about it.
void Work(const Cases& cases, unsigned int first, unsigned int end, unsigned int step,
          const std::string& directory, int report) {
    const int quiet = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(quiet, STDOUT_FILENO);
    SpeedUpTheClock();
    const Place place = {RequestPort(1 + first), RequestPort(101 + first), directory};
    const std::vector<int> before = TftpTest::Descriptors();
    for (unsigned int seed = first; seed < end; seed += step) {
        unsigned int result = 0;
        std::string problem = Transfer(cases(seed), place, result);
        if (problem.empty() && TftpTest::Descriptors() != before) problem = "a descriptor is left";
        dprintf(report, "%u %u %s\n", seed, result, problem.c_str());
    }
}

class TqTftpNetwork : public TftpTest {
protected:
    void SetUp() override {
        if (!TftpNetworkProblem().empty()) GTEST_SKIP() << TftpNetworkProblem();
        alarm(static_cast<unsigned int>(longestTest));
    }
    void TearDown() override { alarm(0); }

    // Runs the transfers in several processes at a time, which wait more than they work.
    void Run(unsigned int transfers, const Cases& cases) {
        // One answer must not take longer than servers wait for it: they would only repeat.
        const unsigned int workers = IsOnDevice() ? 2 : 12;
        const long long start = Now();
        int report[2];
        ASSERT_EQ(pipe(report), 0);
        std::vector<Child> children;
        for (unsigned int worker = 0; worker < workers; ++worker) {
            children.emplace_back([&] {
                close(report[0]);
                Work(cases, worker, transfers, workers, directory.Path(), report[1]);
            });
        }
        close(report[1]);
        unsigned int complete = 0;
        const unsigned int all = ReadReport(report[0], complete);
        EXPECT_EQ(all, transfers);
        std::cout << all << " transfers in " << (Now() - start + 500) / 1000 << " s: " << complete
                  << " complete, " << all - complete << " ended by a result code\n";
    }

private:
    static unsigned int ReadReport(int descriptor, unsigned int& complete) {
        std::FILE* stream = fdopen(descriptor, "r");
        char line[256];
        unsigned int all = 0;
        while (std::fgets(line, sizeof line, stream) != nullptr) {
            std::istringstream words(line);
            unsigned int seed = 0;
            unsigned int result = 0;
            std::string problem;
            words >> seed >> result >> std::ws;
            std::getline(words, problem);
            EXPECT_EQ(problem, "") << "seed " << seed << ", result " << result;
            ++all;
            complete += result == 0 ? 1 : 0;
        }
        std::fclose(stream);
        return all;
    }

    const TemporaryDirectory directory;
};

TEST_F(TqTftpNetwork, TransfersEndWithTheExactBytesOrAResultCode) {
    Run(Scaled(1000, 200), [](unsigned int seed) {
        Dice dice(seed);
        Case test = SomeCase(seed, dice);
        test.troubles.loss = dice.UpTo(30);
        test.troubles.duplication = seed % 4 == 0 ? 0 : dice.UpTo(30);
        // Nothing overtakes in two of four networks, and there every transfer must be complete.
        test.troubles.delay = seed % 4 < 2 ? 0 : dice.UpTo(30);
        test.mustComplete = test.troubles.delay == 0;
        return test;
    });
}

TEST_F(TqTftpNetwork, AServerThatSendsAgainMakesUpForTheBlockingReceive) {
    Run(Scaled(200, 40), [](unsigned int seed) {
        Dice dice(seed);
        Case test = SomeCase(seed, dice);
        test.troubles.loss = dice.UpTo(30);
        test.troubles.duplication = dice.UpTo(30);
        test.troubles.sparesRequests = true;
        test.hasSignal = false;
        test.mustComplete = true;
        // Not before the answer had its time: a server that only repeats has everybody busy with
        // it.
        test.server.resendAfter = Slowness() > 1 ? 500 : 2;
        test.server.resends = 1000;
        return test;
    });
}

TEST_F(TqTftpNetwork, DamagedHeadersNeverBecomeData) {
    Run(Scaled(200, 40), [](unsigned int seed) {
        Dice dice(seed);
        Case test = SomeCase(seed, dice);
        test.troubles.loss = dice.UpTo(10);
        test.troubles.duplication = dice.UpTo(10);
        test.troubles.truncation = dice.UpTo(2);
        test.troubles.corruption = 1 + dice.UpTo(2);
        test.troubles.endAfter = 2000 * slowness;
        return test;
    });
}

TEST_F(TqTftpNetwork, DamageThatNobodyCanNoticeDoesNoHarmToTheClient) {
    Run(Scaled(200, 40), [](unsigned int seed) {
        Dice dice(seed);
        Case test = SomeCase(seed, dice);
        test.troubles.loss = dice.UpTo(30);
        test.troubles.duplication = dice.UpTo(30);
        test.troubles.delay = dice.UpTo(30);
        test.troubles.truncation = dice.UpTo(10);
        test.troubles.corruption = 1 + dice.UpTo(9);
        test.troubles.isUnnoticed = true;
        test.troubles.endAfter = 2000 * slowness;
        test.mayDiffer = true;
        test.server.resendAfter = 5 * slowness;
        return test;
    });
}

}  // namespace
