#include "TqDownload.h"

#include <errno.h>
#include <fcntl.h>
#include <netdb.h>
#include <pthread.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "Child.h"
#include "Files.h"
#include "Scale.h"
#include "SystemCalls.h"
#include "TftpAnswers.h"
#include "TftpHost.h"
#include "TftpScript.h"
#include "TftpTest.h"
#include "TqTftp.h"

namespace {

// Every test is to leave descriptors and the signal as it found them.
class TqDownloadFetch : public TftpTest {
protected:
    void SetUp() override {
        TftpTest::SetUp();
        before = Descriptors();
    }
    void TearDown() override {
        if (!IsSkipped()) {
            EXPECT_EQ(Descriptors(), before);
        }
        TftpTest::TearDown();
    }

    // Serves the directory from a host.
    Child Serve(unsigned int host = 1) const { return ServeFolder(served.Path(), host); }

    static std::string TextOf(const TqDownload& download) {
        TqString text;
        download.AppendText(text);
        return text.data;
    }

    static std::string ContentOf(const TqBuffer& buffer) {
        return std::string(reinterpret_cast<const char*>(buffer.data), buffer.length);
    }

    const TemporaryDirectory directory;
    const TemporaryDirectory served;
    std::vector<int> before;
};

TEST_F(TqDownloadFetch, AFileComesIntoABufferBehindWhatWasThere) {
    const std::string file = RandomBytes(3000, 1);
    WriteFile(served.Path("motd"), file);
    const Child server = Serve();
    TqBuffer buffer;
    buffer.Append(reinterpret_cast<const unsigned char*>("before"), 6);
    TqDownload download(HostName().c_str(), "motd");
    EXPECT_EQ(download.ToBuffer(buffer), TqDownload::complete);
    EXPECT_TRUE(ContentOf(buffer) == "before" + file);
    EXPECT_EQ(download.bytes, 3000u);
    EXPECT_EQ(TextOf(download), "");
}

TEST_F(TqDownloadFetch, FilesOfEverySizeCome) {
    const Child server = Serve();
    for (const std::size_t length : {0u, 1u, 511u, 512u, 513u, 1024u}) {
        const std::string file = RandomBytes(length, static_cast<unsigned int>(length));
        WriteFile(served.Path("file"), file);
        TqBuffer buffer;
        EXPECT_EQ(TqDownload(HostName().c_str(), "file").ToBuffer(buffer), TqDownload::complete);
        EXPECT_TRUE(ContentOf(buffer) == file) << length;
    }
}

TEST_F(TqDownloadFetch, AFailureLeavesTheBufferAsItWas) {
    const Child server =
        Answer([](const UdpSocket& socket, const Endpoint& client, const Octets& datagram) {
            socket.Send(client, datagram[1] == 1 ? Data(1, Octets(512, 'x')) : Error(3, "full"));
        });
    TqBuffer buffer;
    buffer.Append(reinterpret_cast<const unsigned char*>("before"), 6);
    buffer.AdvanceReadContext(2);
    TqDownload download(HostName().c_str(), "motd");
    EXPECT_EQ(download.ToBuffer(buffer), TFTP_SERVER_ERROR + 3u);
    EXPECT_EQ(ContentOf(buffer), "before");
    EXPECT_EQ(buffer.readPosition, 2u);
    EXPECT_EQ(TextOf(download), "the server's disk is full (error 3: full)");
}

TEST_F(TqDownloadFetch, TheTextMayBePrintedWhateverTheServerSays) {
    const Child server = Answer([](const UdpSocket& socket, const Endpoint& client, const Octets&) {
        socket.Send(client, Error(1, "a\x1B[31m ~b\nc\x7F d\xFF"));
    });
    TqBuffer buffer;
    TqDownload download(HostName().c_str(), "motd");
    download.ToBuffer(buffer);
    EXPECT_EQ(TextOf(download), "the server has no such file (error 1: a?[31m ~b?c? d?)");
    EXPECT_STREQ(download.words.data, "a\x1B[31m ~b\nc\x7F d\xFF");
}

TEST_F(TqDownloadFetch, AFileIsThereWhenItIsComplete) {
    WriteFile(served.Path("motd"), "new");
    WriteFile(directory.Path("motd"), "old");
    const Child server = Serve();
    TqDownload download(HostName().c_str(), "motd");
    EXPECT_EQ(download.ToFile(directory.Path("motd").c_str()), TqDownload::complete);
    EXPECT_EQ(ReadFile(directory.Path("motd")), "new");
    EXPECT_EQ(directory.Names(), std::vector<std::string>({"motd"}));
}

TEST_F(TqDownloadFetch, WhatStandsInTheWayOfAFileIsNotWrittenTo) {
    WriteFile(served.Path("motd"), "new");
    const Child server = Serve();
    TqDownload download(HostName().c_str(), "motd");
    const std::string path = directory.Path("motd");
    WriteFile(directory.Path("precious"), "old");
    ASSERT_EQ(symlink("precious", (path + ".part").c_str()), 0);
    EXPECT_EQ(download.ToFile(path.c_str()), TqDownload::complete);
    EXPECT_EQ(ReadFile(directory.Path("precious")), "old");
    EXPECT_EQ(ReadFile(path), "new");
    ASSERT_EQ(link(directory.Path("precious").c_str(), (path + ".part").c_str()), 0);
    EXPECT_EQ(download.ToFile(path.c_str()), TqDownload::complete);
    EXPECT_EQ(ReadFile(directory.Path("precious")), "old");
    EXPECT_EQ(directory.Names(), std::vector<std::string>({"motd", "precious"}));
}

TEST_F(TqDownloadFetch, WhatCannotBeRemovedFromTheWayIsAFailure) {
    ASSERT_EQ(mkdir(directory.Path("motd.part").c_str(), 0700), 0);
    TqDownload download(HostName().c_str(), "motd");
    EXPECT_EQ(download.ToFile(directory.Path("motd").c_str()), TqDownload::refused);
    EXPECT_STREQ(download.words.data, "File exists");
    EXPECT_EQ(directory.Names(), std::vector<std::string>({"motd.part"}));
}

TEST_F(TqDownloadFetch, AFailureLeavesTheFileAsItWas) {
    WriteFile(directory.Path("motd"), "old");
    const Child server = AnswerWithBlocks(2);
    TqDownload download(HostName().c_str(), "motd");
    download.patience = 1;
    EXPECT_EQ(download.ToFile(directory.Path("motd").c_str()), TqDownload::silent);
    EXPECT_EQ(ReadFile(directory.Path("motd")), "old");
    EXPECT_EQ(directory.Names(), std::vector<std::string>({"motd"}));
}

TEST_F(TqDownloadFetch, AFileThatCannotBeWrittenHasTheSystemsReason) {
    TqDownload download(HostName().c_str(), "motd");
    EXPECT_EQ(download.ToFile(directory.Path("no/folder").c_str()), TqDownload::refused);
    EXPECT_EQ(TextOf(download), "what came could not be stored (No such file or directory)");
    EXPECT_EQ(download.ToFile(directory.Path().c_str()), TqDownload::refused);
    EXPECT_EQ(TextOf(download), "what came could not be stored (Is a directory)");
}

TEST_F(TqDownloadFetch, AFileThatCannotTakeItsPlaceIsGone) {
    const std::string place = directory.Path("motd");
    const Child server =
        Answer([place](const UdpSocket& socket, const Endpoint& client, const Octets& datagram) {
            mkdir(place.c_str(), 0700);
            if (datagram[1] == 1) socket.Send(client, Data(1, "hello"));
        });
    TqDownload download(HostName().c_str(), "motd");
    EXPECT_EQ(download.ToFile(place.c_str()), TqDownload::refused);
    EXPECT_EQ(TextOf(download), "what came could not be stored (Is a directory)");
    EXPECT_EQ(directory.Names(), std::vector<std::string>({"motd"}));
}

// The bytes leave the process only at the end.
TEST_F(TqDownloadFetch, WhatAPipeDoesNotTakeIsAFailure) {
    WriteFile(served.Path("motd"), "hello");
    const Child server = Serve();
    const std::string pipe = directory.Path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    signal(SIGPIPE, SIG_IGN);
    TqDownload download(HostName().c_str(), "motd");
    download.watch = [](void* user, unsigned long long bytes, unsigned int) {
        int& descriptor = *static_cast<int*>(user);
        if (bytes > 0 && descriptor >= 0) close(descriptor);
        if (bytes > 0) descriptor = -1;
    };
    download.watchUser = &reader;
    EXPECT_EQ(download.ToFile(pipe.c_str()), TqDownload::refused);
    EXPECT_EQ(TextOf(download), "what came could not be stored (Broken pipe)");
    signal(SIGPIPE, SIG_DFL);
}

TEST_F(TqDownloadFetch, APipeIsWrittenToAndNotReplaced) {
    WriteFile(served.Path("motd"), "hello");
    const Child server = Serve();
    const std::string pipe = directory.Path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    TqDownload download(HostName().c_str(), "motd");
    EXPECT_EQ(download.ToFile(pipe.c_str()), TqDownload::complete) << TextOf(download);
    char bytes[16];
    EXPECT_EQ(read(reader, bytes, sizeof bytes), 5);
    close(reader);
    EXPECT_EQ(directory.Names(), std::vector<std::string>({"pipe"}));
}

TEST_F(TqDownloadFetch, AFunctionGetsThePiecesInOrderOnTheCallersThread) {
    const std::string file = RandomBytes(1300, 2);
    WriteFile(served.Path("motd"), file);
    const Child server = Serve();
    std::string got;
    const pthread_t own = pthread_self();
    const unsigned int result =
        TqDownload(HostName().c_str(), "motd")
            .ToFunction([&](const unsigned char* bytes, unsigned int count) {
                EXPECT_TRUE(pthread_equal(own, pthread_self()));
                got.append(reinterpret_cast<const char*>(bytes), count);
                return true;
            });
    EXPECT_EQ(result, TqDownload::complete);
    EXPECT_TRUE(got == file);
}

TEST_F(TqDownloadFetch, AReceiverMayRefuse) {
    const Child server = AnswerWithBlocks(100);
    TqDownload download(HostName().c_str(), "motd");
    int pieces = 0;
    EXPECT_EQ(download.ToFunction([&pieces](const unsigned char*, unsigned int) {
        errno = ENOSPC;
        return ++pieces < 3;
    }),
              TqDownload::refused);
    EXPECT_EQ(pieces, 3);
    EXPECT_EQ(TextOf(download), "what came could not be stored (No space left on device)");
}

TEST_F(TqDownloadFetch, WhatAReceiverThrowsGetsThroughAndTheNextFetchWorks) {
    WriteFile(served.Path("motd"), "hello");
    const Child server = Serve();
    TqDownload download(HostName().c_str(), "motd");
    EXPECT_THROW(download.ToFunction([](const unsigned char*, unsigned int) -> bool {
        throw std::runtime_error("enough");
    }),
                 std::runtime_error);
    TqBuffer buffer;
    EXPECT_EQ(download.ToBuffer(buffer), TqDownload::complete);
    EXPECT_EQ(ContentOf(buffer), "hello");
}

TEST_F(TqDownloadFetch, MoreThanIsWantedIsRefused) {
    WriteFile(served.Path("motd"), std::string(1000, 'x'));
    const Child server = Serve();
    TqBuffer buffer;
    TqDownload download(HostName().c_str(), "motd");
    download.mostBytes = 999;
    EXPECT_EQ(download.ToBuffer(buffer), TqDownload::tooMany);
    EXPECT_EQ(buffer.length, 0u);
    download.mostBytes = 1000;
    EXPECT_EQ(download.ToBuffer(buffer), TqDownload::complete);
}

TEST_F(TqDownloadFetch, ASilentServerIsGivenUp) {
    const Child server = AnswerWithBlocks(2);
    TqBuffer buffer;
    TqDownload download(HostName().c_str(), "motd");
    download.patience = 1;
    const long long start = Now();
    EXPECT_EQ(download.ToBuffer(buffer), TqDownload::silent);
    EXPECT_GE(Now() - start, 1000);
    EXPECT_EQ(TextOf(download), "no new block for 1 second");
}

// Of several tries the quickest counts.
TEST_F(TqDownloadFetch, AnEndComesInTime) {
    if (runsSlowly) GTEST_SKIP() << "takes too long; the other targets have seen it";
    const Child server = AnswerWithBlocks(1);
    for (const bool isDeadline : {false, true}) {
        long long quickest = 10000;
        for (int i = 0; i < 5 && quickest >= 1100; ++i) {
            TqBuffer buffer;
            TqDownload download(HostName().c_str(), "motd");
            download.patience = isDeadline ? 0 : 1;
            download.deadline = isDeadline ? 1 : 0;
            const long long start = Now();
            EXPECT_EQ(download.ToBuffer(buffer),
                      isDeadline ? TqDownload::late : TqDownload::silent);
            quickest = std::min(quickest, Now() - start);
        }
        EXPECT_GE(quickest, 1000);
        EXPECT_LT(quickest, 1100);
    }
}

// Datagrams without an end, so that the client's receive is never without one.
TEST_F(TqDownloadFetch, AFloodOfRepeatsIsGivenUpToo) {
    const Child server = Answer([](const UdpSocket& socket, const Endpoint& client, const Octets&) {
        const UdpSocket stranger({Host(2), 0});
        while (true) {
            for (int i = 0; i < 20; ++i) {
                socket.Send(client, Data(1, Octets(512, 'x')));
                stranger.Send(client, Data(2, "evil"));
            }
            usleep(1000);
        }
    });
    TqBuffer buffer;
    TqDownload download(HostName().c_str(), "motd");
    download.patience = 1;
    EXPECT_EQ(download.ToBuffer(buffer), TqDownload::silent);
}

// It would have the client answer the server once more.
TEST_F(TqDownloadFetch, NothingReachesAClientThatIsLeft) {
    static std::atomic<int> left(0);
    static std::atomic<int> reached(0);
    systemCalls.recvfrom = [](int descriptor, void* bytes, std::size_t length, int flags,
                              sockaddr* sender, socklen_t* senderLength) {
        if ((fcntl(descriptor, F_GETFL) & O_NONBLOCK) != 0 && left++ == 0) {
            sockaddr_in own = sockaddr_in();
            socklen_t ownLength = sizeof own;
            getsockname(descriptor, reinterpret_cast<sockaddr*>(&own), &ownLength);
            UdpSocket({Host(2), 0}).Send({Host(2), ToEndpoint(own).port}, "late");
            reached += recv(descriptor, bytes, length, MSG_PEEK | MSG_DONTWAIT) < 0 ? 0 : 1;
        }
        return recvfrom(descriptor, bytes, length, flags, sender, senderLength);
    };
    const Child server = Answer([](const UdpSocket&, const Endpoint&, const Octets&) {});
    TqDownload download(HostName().c_str(), "motd");
    download.deadline = 1;
    TqBuffer buffer;
    EXPECT_EQ(download.ToBuffer(buffer), TqDownload::late);
    EXPECT_GT(left, 0);
    EXPECT_EQ(reached, 0);
}

TEST_F(TqDownloadFetch, TheDeadlineEndsATransferThatGoesOn) {
    const Child server =
        Answer([](const UdpSocket& socket, const Endpoint& client, const Octets& datagram) {
            usleep(100000);
            socket.Send(client, Data(BlockAskedFor(datagram), Octets(512, 'x')));
        });
    TqBuffer buffer;
    TqDownload download(HostName().c_str(), "motd");
    download.deadline = 1;
    const long long start = Now();
    EXPECT_EQ(download.ToBuffer(buffer), TqDownload::late);
    EXPECT_GE(Now() - start, 1000);
    EXPECT_EQ(TextOf(download), "not complete after 1 second");
}

TEST_F(TqDownloadFetch, AnotherThreadMayCancel) {
    const Child server = Answer([](const UdpSocket&, const Endpoint&, const Octets&) {});
    TqBuffer buffer;
    TqDownload download(HostName().c_str(), "motd");
    download.patience = 0;
    std::thread other([&download] {
        usleep(300000);
        download.Cancel();
    });
    EXPECT_EQ(download.ToBuffer(buffer), TqDownload::cancelled);
    other.join();
    EXPECT_EQ(TextOf(download), "cancelled");
    // And so it stays.
    EXPECT_EQ(download.ToBuffer(buffer), TqDownload::cancelled);
}

TEST_F(TqDownloadFetch, AWatcherIsToldOfPiecesAndOfSilence) {
    const Child server = AnswerWithBlocks(2);
    struct Seen {
        std::vector<unsigned long long> bytes;
        unsigned int longest = 0;
    } seen;
    TqDownload download(HostName().c_str(), "motd");
    download.patience = 1;
    download.watch = [](void* user, unsigned long long bytes, unsigned int silence) {
        Seen& own = *static_cast<Seen*>(user);
        if (silence == 0) own.bytes.push_back(bytes);
        own.longest = std::max(own.longest, silence);
    };
    download.watchUser = &seen;
    TqBuffer buffer;
    EXPECT_EQ(download.ToBuffer(buffer), TqDownload::silent);
    EXPECT_EQ(seen.bytes, std::vector<unsigned long long>({512, 1024}));
    EXPECT_GE(seen.longest, 200u);
}

TEST_F(TqDownloadFetch, WhatAWatcherThrowsLeavesNeitherBytesNorFiles) {
    WriteFile(served.Path("motd"), RandomBytes(3000, 1));
    WriteFile(directory.Path("motd"), "before");
    const Child server = Serve();
    TqDownload download(HostName().c_str(), "motd");
    download.watch = [](void*, unsigned long long, unsigned int) {
        throw std::runtime_error("enough");
    };
    TqBuffer buffer;
    buffer.Append(reinterpret_cast<const unsigned char*>("before"), 6);
    EXPECT_THROW(download.ToBuffer(buffer), std::runtime_error);
    EXPECT_EQ(ContentOf(buffer), "before");
    EXPECT_THROW(download.ToFile(directory.Path("motd").c_str()), std::runtime_error);
    EXPECT_EQ(directory.Names(), std::vector<std::string>({"motd"}));
    EXPECT_EQ(ReadFile(directory.Path("motd")), "before");
}

TEST_F(TqDownloadFetch, AWatcherMayCancel) {
    const Child server = Answer([](const UdpSocket&, const Endpoint&, const Octets&) {});
    TqDownload download(HostName().c_str(), "motd");
    download.watch = [](void* user, unsigned long long, unsigned int) {
        static_cast<TqDownload*>(user)->Cancel();
    };
    download.watchUser = &download;
    TqBuffer buffer;
    EXPECT_EQ(download.ToBuffer(buffer), TqDownload::cancelled);
}

// While it lives, what is printed goes to a file.
class PrintedTo {
public:
    explicit PrintedTo(const std::string& path) : output(Flushed()) {
        const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        dup2(file, STDOUT_FILENO);
        close(file);
    }
    ~PrintedTo() {
        fflush(stdout);
        dup2(output, STDOUT_FILENO);
        close(output);
    }

private:
    static int Flushed() {
        fflush(stdout);
        return fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0);
    }

    const int output;
};

// What the client prints while its first request gets no answer.
std::string PrintedWhenARequestIsLost(const std::string& path) {
    const PrintedTo file(path);
    const Child server = Answer(
        [requests = 0](const UdpSocket& socket, const Endpoint& client, const Octets&) mutable {
            if (++requests == 2) socket.Send(client, Data(1, "late"));
        });
    TqBuffer buffer;
    EXPECT_EQ(TqDownload(HostName().c_str(), "motd").ToBuffer(buffer), TqDownload::complete);
    EXPECT_EQ(buffer.length, 4u);
    fflush(stdout);
    return ReadFile(path);
}

// The client sends the request again only when something interrupts its receive. It complains when
// its wait before the receive is interrupted, which happens on a busy machine, but not always.
TEST_F(TqDownloadFetch, ALostRequestIsSentAgain) {
    int complaints = 0;
    while (complaints < 4) {
        const std::string printed = PrintedWhenARequestIsLost(directory.Path("printed"));
        if (printed.find("failed") == std::string::npos) {
            EXPECT_NE(printed.find("select() timeout"), std::string::npos) << printed;
            break;
        }
        ++complaints;
    }
    EXPECT_LT(complaints, 4);
}

// Each time that its wait is interrupted, the client prints a line.
TEST_F(TqDownloadFetch, ASilentServersClientIsInterruptedOnceASecond) {
    const std::string path = directory.Path("printed");
    {
        const PrintedTo file(path);
        const Child server = AnswerWithBlocks(0);
        TqDownload download(HostName().c_str(), "motd");
        download.patience = 9;
        TqBuffer buffer;
        EXPECT_EQ(download.ToBuffer(buffer), TqDownload::silent);
    }
    const std::string printed = ReadFile(path);
    EXPECT_LE(std::count(printed.begin(), printed.end(), '\n'), 8) << printed;
}

TEST_F(TqDownloadFetch, WaitingTakesNoProcessorTime) {
    const Child server = AnswerWithBlocks(1);
    TqDownload download(HostName().c_str(), "motd");
    download.patience = 1;
    const clock_t begun = clock();
    TqBuffer buffer;
    EXPECT_EQ(download.ToBuffer(buffer), TqDownload::silent);
    EXPECT_LT(clock() - begun, CLOCKS_PER_SEC / 2);
}

// A single block is not kept back until there are more. Of several tries the quickest counts.
TEST_F(TqDownloadFetch, ABlockIsHandedOnWhenItComes) {
    if (runsSlowly) GTEST_SKIP() << "takes too long; the other targets have seen it";
    const Child server = AnswerWithBlocks(1);
    long long quickest = 1000;
    for (int i = 0; i < 5; ++i) {
        TqDownload download(HostName().c_str(), "motd");
        const long long begun = Now();
        download.ToFunction([&](const unsigned char*, unsigned int) {
            quickest = std::min(quickest, Now() - begun);
            return false;
        });
    }
    EXPECT_LT(quickest, 100);
}

std::atomic<int> urgent(0);

TEST_F(TqDownloadFetch, ItsSignalIsThePreviousOwnersAgainAfterwards) {
    struct sigaction action = {};
    action.sa_handler = [](int) { ++urgent; };
    sigaction(SIGURG, &action, nullptr);
    WriteFile(served.Path("motd"), "hello");
    const Child server = Serve();
    TqBuffer buffer;
    EXPECT_EQ(TqDownload(HostName().c_str(), "motd").ToBuffer(buffer), TqDownload::complete);
    EXPECT_EQ(urgent, 0);
    raise(SIGURG);
    EXPECT_EQ(urgent, 1);
    signal(SIGURG, SIG_DFL);
}

// Signals of the program interrupt nothing and go to its own threads.
TEST_F(TqDownloadFetch, SignalsOfTheProgramDoNoHarm) {
    static pthread_t own;
    static std::atomic<int> elsewhere(0);
    own = pthread_self();
    struct sigaction action = {};
    action.sa_handler = [](int) { elsewhere += pthread_equal(own, pthread_self()) ? 0 : 1; };
    sigaction(SIGUSR1, &action, nullptr);
    const pid_t parent = getpid();
    WriteFile(served.Path("motd"), RandomBytes(200000, 3));
    const Child server = Serve();
    const Child disturber([parent] {
        while (true) {
            kill(parent, SIGUSR1);
            usleep(2000);
        }
    });
    TqBuffer buffer;
    EXPECT_EQ(TqDownload(HostName().c_str(), "motd").ToBuffer(buffer), TqDownload::complete);
    EXPECT_TRUE(ContentOf(buffer) == RandomBytes(200000, 3));
    EXPECT_EQ(elsewhere, 0);
    signal(SIGUSR1, SIG_IGN);
}

TEST_F(TqDownloadFetch, ASignalThatTheCallerBlocksWaitsForTheCaller) {
    static std::atomic<int> handled(0);
    signal(SIGUSR1, [](int) { ++handled; });
    sigset_t one;
    sigset_t maskBefore;
    sigemptyset(&one);
    sigaddset(&one, SIGUSR1);
    pthread_sigmask(SIG_BLOCK, &one, &maskBefore);
    WriteFile(served.Path("motd"), RandomBytes(200000, 3));
    const Child server = Serve();
    TqDownload download(HostName().c_str(), "motd");
    auto disturb = [](const unsigned char*, unsigned int) { return kill(getpid(), SIGUSR1) == 0; };
    EXPECT_EQ(download.ToFunction(disturb), TqDownload::complete);
    EXPECT_EQ(handled, 0);
    signal(SIGUSR1, SIG_IGN);
    pthread_sigmask(SIG_SETMASK, &maskBefore, nullptr);
}

TEST_F(TqDownloadFetch, ThreadsTakeTurns) {
    for (unsigned int i = 0; i < 4; ++i) {
        WriteFile(served.Path(std::to_string(i)), RandomBytes(20000, i));
    }
    const Child server = Serve();
    std::vector<std::thread> threads;
    std::atomic<int> complete(0);
    for (unsigned int i = 0; i < 4; ++i) {
        threads.emplace_back([i, &complete] {
            TqBuffer buffer;
            TqDownload download(HostName().c_str(), std::to_string(i).c_str());
            if (download.ToBuffer(buffer) == TqDownload::complete &&
                ContentOf(buffer) == RandomBytes(20000, i)) {
                ++complete;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(complete, 4);
}

TEST_F(TqDownloadFetch, AFetchFromAReceiverIsRefused) {
    WriteFile(served.Path("motd"), "hello");
    const Child server = Serve();
    unsigned int inner = 0;
    TqDownload download(HostName().c_str(), "motd");
    EXPECT_EQ(download.ToFunction([&inner](const unsigned char*, unsigned int) {
        TqBuffer buffer;
        inner = TqDownload(HostName().c_str(), "motd").ToBuffer(buffer);
        return true;
    }),
              TqDownload::complete);
    EXPECT_EQ(inner, TqDownload::nested);
}

TEST_F(TqDownloadFetch, OtherThreadsMayOpenSocketsMeanwhile) {
#ifdef TQ_THREAD_SANITIZED
    GTEST_SKIP() << "the thread sanitizer takes it for a use to ask what a descriptor is";
#endif
    WriteFile(served.Path("motd"), "hello");
    const Child server = Serve();
    std::atomic<bool> isOver(false);
    std::thread other([&isOver] {
        while (!isOver) {
            const UdpSocket socket({INADDR_ANY, 0});
            const int copy = dup(socket.Descriptor());
            close(copy);
        }
    });
    for (int i = 0; i < 20; ++i) {
        TqBuffer buffer;
        TqDownload download(HostName().c_str(), "motd");
        const unsigned int result = download.ToBuffer(buffer);
        if (result == TFTP_NO_SOCKET) {
            // Three times at the very same moment: nothing is mixed up then.
            EXPECT_EQ(TextOf(download),
                      "the socket could not be created (Device or resource busy)");
        } else {
            EXPECT_EQ(result, TqDownload::complete) << TextOf(download);
        }
    }
    isOver = true;
    other.join();
}

TEST_F(TqDownloadFetch, AMachineWithoutDescriptorsIsAFailureWithAReason) {
    if (runsSlowly) GTEST_SKIP() << "emulators and sanitizers need descriptors themselves";
    const Child server = AnswerWithBlocks(1);
    int status = -1;
    Child child([] {
        const int next = NextDescriptor();
        for (int free = 0; free < 2; ++free) {
            const rlimit few = {static_cast<rlim_t>(next + free), static_cast<rlim_t>(next + free)};
            const rlimit most = {few.rlim_cur, static_cast<rlim_t>(next + 1)};
            setrlimit(RLIMIT_NOFILE, free == 0 ? &most : &few);
            TqBuffer buffer;
            TqDownload download(HostName().c_str(), "motd");
            if (download.ToBuffer(buffer) != TFTP_NO_SOCKET) _exit(1);
            if (TextOf(download) != "the socket could not be created (Too many open files)") {
                _exit(2);
            }
        }
        _exit(0);
    });
    ASSERT_TRUE(child.Wait(60000, status));
    EXPECT_EQ(status, 0);
}

TEST_F(TqDownloadFetch, AFileWithMoreBlocksThanNumbersIsCalledTooLarge) {
    if (runsSlowly) GTEST_SKIP() << "takes too long; the tool's own test fetches such a file";
    const Child server = AnswerWithBlocks(70000);
    TqDownload download(HostName().c_str(), "huge");
    EXPECT_EQ(download.ToFunction([](const unsigned char*, unsigned int) { return true; }),
              TqDownload::tooLarge);
    EXPECT_EQ(download.bytes, 65535ull * 512);
}

TEST_F(TqDownloadFetch, AServerWithoutAnAddressIsNamed) {
    TqBuffer buffer;
    TqDownload download("::1", "motd");
    EXPECT_EQ(download.ToBuffer(buffer), TqDownload::noServer);
    EXPECT_NE(TextOf(download), "");
    EXPECT_EQ(download.FindServer(), TqDownload::noServer);
}

TEST_F(TqDownloadFetch, TheServerMayBeFoundBeforehand) {
    WriteFile(served.Path("motd"), "hello");
    const Child server = Serve();
    TqDownload download(HostName().c_str(), "motd");
    EXPECT_EQ(download.FindServer(), TqDownload::complete);
    EXPECT_EQ(download.address, htonl(Host(1)));
    TqBuffer buffer;
    EXPECT_EQ(download.ToBuffer(buffer), TqDownload::complete);
}

TEST_F(TqDownloadFetch, TheModeIsTheOneAskedFor) {
    const Child server =
        Answer([](const UdpSocket& socket, const Endpoint& client, const Octets& datagram) {
            if (datagram[1] == 1) socket.Send(client, Data(1, datagram.substr(2)));
        });
    TqDownload download(HostName().c_str(), "f");
    TqBuffer octet;
    TqBuffer text;
    EXPECT_EQ(download.ToBuffer(octet), TqDownload::complete);
    download.mode = "netascii";
    EXPECT_EQ(download.ToBuffer(text), TqDownload::complete);
    EXPECT_EQ(ContentOf(octet), std::string("f\0octet\0", 8));
    EXPECT_EQ(ContentOf(text), std::string("f\0netascii\0", 11));
}

TEST(TqDownloadBefore, AFetchIsAsTheHeaderSays) {
    const TqDownload download("host", "motd");
    EXPECT_STREQ(download.server.data, "host");
    EXPECT_STREQ(download.fileName.data, "motd");
    EXPECT_STREQ(download.mode.data, "octet");
    EXPECT_EQ(download.patience, 30u);
    EXPECT_EQ(download.deadline, 0u);
    EXPECT_EQ(download.mostBytes, 0u);
    EXPECT_EQ(download.watch, nullptr);
    EXPECT_EQ(download.watchUser, nullptr);
    EXPECT_EQ(download.result, TqDownload::complete);
    EXPECT_EQ(download.bytes, 0u);
    EXPECT_EQ(download.address, 0u);
}

TEST_F(TqDownloadFetch, TheBytesAreThoseOfTheLastFetch) {
    WriteFile(served.Path("motd"), "hello");
    const Child server = Serve();
    TqDownload download(HostName().c_str(), "motd");
    for (int i = 0; i < 2; ++i) {
        TqBuffer buffer;
        EXPECT_EQ(download.ToBuffer(buffer), TqDownload::complete);
        EXPECT_EQ(download.bytes, 5u);
    }
}

TEST_F(TqDownloadFetch, ASingleByteMayBeTheMost) {
    WriteFile(served.Path("motd"), "12");
    const Child server = Serve();
    TqDownload download(HostName().c_str(), "motd");
    download.mostBytes = 1;
    TqBuffer buffer;
    EXPECT_EQ(download.ToBuffer(buffer), TqDownload::tooMany);
    WriteFile(served.Path("motd"), "1");
    EXPECT_EQ(download.ToBuffer(buffer), TqDownload::complete);
}

TEST_F(TqDownloadFetch, AReceiverNeedNotSayWhyItRefuses) {
    const Child server = AnswerWithBlocks(3);
    TqDownload download(HostName().c_str(), "motd");
    download.watch = [](void*, unsigned long long, unsigned int) { errno = EIO; };
    EXPECT_EQ(download.ToFunction(
                  [count = 0](const unsigned char*, unsigned int) mutable { return ++count < 2; }),
              TqDownload::refused);
    EXPECT_EQ(TextOf(download), "what came could not be stored");
}

// So many blocks gather meanwhile that the client has to wait.
TEST_F(TqDownloadFetch, AReceiverMayTakeItsTime) {
    const std::string file = RandomBytes(100 * 512, 4);
    WriteFile(served.Path("motd"), file);
    const Child server = Serve();
    TqDownload download(HostName().c_str(), "motd");
    download.patience = 5;
    std::string got;
    EXPECT_EQ(download.ToFunction([&got](const unsigned char* bytes, unsigned int count) {
        if (got.empty()) usleep(500000);
        got.append(reinterpret_cast<const char*>(bytes), count);
        return true;
    }),
              TqDownload::complete);
    EXPECT_TRUE(got == file);
    EXPECT_EQ(download.ToFunction([](const unsigned char*, unsigned int) {
        usleep(500000);
        return false;
    }),
              TqDownload::refused);
}

TEST_F(TqDownloadFetch, TheWatcherHearsOfSilenceWhileThereIsSomeAndFiveTimesASecond) {
    WriteFile(served.Path("motd"), RandomBytes(50000, 5));
    struct Heard {
        unsigned int pieces = 0;
        unsigned int silences = 0;
        static void Count(void* user, unsigned long long, unsigned int silence) {
            Heard& own = *static_cast<Heard*>(user);
            ++(silence == 0 ? own.pieces : own.silences);
        }
    } heard;
    TqDownload download(HostName().c_str(), "motd");
    download.watch = Heard::Count;
    download.watchUser = &heard;
    TqBuffer buffer;
    {
        const Child server = Serve();
        const long long start = Now();
        EXPECT_EQ(download.ToBuffer(buffer), TqDownload::complete);
        EXPECT_EQ(heard.pieces, 98u);
        EXPECT_LE(heard.silences, (Now() - start) / 200);
    }
    const Child server = AnswerWithBlocks(1);
    heard = Heard();
    download.patience = 2;
    EXPECT_EQ(download.ToBuffer(buffer), TqDownload::silent);
    EXPECT_EQ(heard.pieces, 1u);
    EXPECT_GE(heard.silences, 1u);
    EXPECT_LE(heard.silences, 13u);
    heard = Heard();
    download.patience = 0;
    download.deadline = 1;
    EXPECT_EQ(download.ToBuffer(buffer), TqDownload::late);
    EXPECT_LE(heard.silences, 8u);
}

// Of several tries the quickest counts.
TEST_F(TqDownloadFetch, TheEndIsNoticedWhenItComes) {
    if (runsSlowly) GTEST_SKIP() << "takes too long; the other targets have seen it";
    WriteFile(served.Path("motd"), "hello");
    const Child server = Serve();
    long long quickest = 1000;
    for (int i = 0; i < 10 && quickest >= 100; ++i) {
        TqBuffer buffer;
        const long long begun = Now();
        EXPECT_EQ(TqDownload(HostName().c_str(), "motd").ToBuffer(buffer), TqDownload::complete);
        quickest = std::min(quickest, Now() - begun);
    }
    EXPECT_LT(quickest, 100);
}

// The times at which it looks around count from the block, the deadline does not.
TEST_F(TqDownloadFetch, ADeadlineIsMetBetweenTwoLooks) {
    if (runsSlowly) GTEST_SKIP() << "takes too long; the other targets have seen it";
    const Child server =
        Answer([](const UdpSocket& socket, const Endpoint& client, const Octets& datagram) {
            usleep(180000);
            if (datagram[1] == 1) socket.Send(client, Data(1, Octets(512, 'x')));
        });
    long long quickest = 10000;
    for (int i = 0; i < 8 && quickest >= 1160; ++i) {
        TqBuffer buffer;
        TqDownload download(HostName().c_str(), "motd");
        download.deadline = 1;
        const long long start = Now();
        EXPECT_EQ(download.ToBuffer(buffer), TqDownload::late);
        quickest = std::min(quickest, Now() - start);
    }
    EXPECT_GE(quickest, 1000);
    EXPECT_LT(quickest, 1160);
}

// With a clock that stands still but where the test winds it on. The server is there all the time,
// so that nobody waits by another clock.
TEST_F(TqDownloadFetch, ADeadlineIsExact) {
    const Child server = AnswerWithBlocks(100);
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    const timespec begun = now;
    systemCalls.clock_gettime = [&now] { return now; };
    TqDownload download(HostName().c_str(), "motd");
    download.deadline = 1000;
    unsigned int pieces = 0;
    EXPECT_EQ(download.ToFunction([&](const unsigned char*, unsigned int) {
        ++pieces;
        now = begun;
        now.tv_sec += 999 + pieces / 3;
        return true;
    }),
              TqDownload::late);
    EXPECT_EQ(pieces, 3u);
}

TEST_F(TqDownloadFetch, APatienceIsExact) {
    const Child server = Answer([](const UdpSocket&, const Endpoint&, const Octets&) {});
    static timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    now.tv_nsec = 0;
    static int looks = 0;
    systemCalls.clock_gettime = [] { return now; };
    TqDownload download(HostName().c_str(), "motd");
    download.patience = 1;
    download.watch = [](void*, unsigned long long, unsigned int) {
        now.tv_sec += ++looks - 1;
        now.tv_nsec = looks == 1 ? 999000000 : 0;
    };
    TqBuffer buffer;
    EXPECT_EQ(download.ToBuffer(buffer), TqDownload::silent);
    EXPECT_EQ(looks, 2);
}

TEST_F(TqDownloadFetch, TheDeadlineEndsATransferThatNeverPauses) {
    const Child server = AnswerWithBlocks(60000);
    TqDownload download(HostName().c_str(), "motd");
    download.deadline = 1;
    const long long start = Now();
    EXPECT_EQ(download.ToFunction([](const unsigned char*, unsigned int) {
        usleep(500);
        return true;
    }),
              TqDownload::late);
    EXPECT_GE(Now() - start, 1000);
    EXPECT_LT(download.bytes, 20000u * 512);
}

TEST_F(TqDownloadFetch, WhoIsCancelledAsksNobody) {
    int sockets = 0;
    systemCalls.bind = [&sockets](int descriptor, const sockaddr* address, socklen_t length) {
        ++sockets;
        return bind(descriptor, address, length);
    };
    TqDownload download(HostName().c_str(), "motd");
    download.Cancel();
    TqBuffer buffer;
    EXPECT_EQ(download.ToBuffer(buffer), TqDownload::cancelled);
    EXPECT_EQ(sockets, 0);
}

// And waits without taking the processor's time.
TEST_F(TqDownloadFetch, WhoWaitsForItsTurnEndsInTimeToo) {
    const Child server = Answer([](const UdpSocket&, const Endpoint&, const Octets&) {});
    TqDownload first(HostName().c_str(), "motd");
    std::atomic<bool> hasTurn(false);
    first.watch = [](void* user, unsigned long long, unsigned int) {
        *static_cast<std::atomic<bool>*>(user) = true;
    };
    first.watchUser = &hasTurn;
    std::thread other([&first] {
        TqBuffer buffer;
        EXPECT_EQ(first.ToBuffer(buffer), TqDownload::cancelled);
    });
    while (!hasTurn) usleep(1000);
    TqDownload second(HostName().c_str(), "motd");
    second.deadline = 1;
    TqBuffer buffer;
    const clock_t used = clock();
    EXPECT_EQ(second.ToBuffer(buffer), TqDownload::late);
    EXPECT_LT(clock() - used, CLOCKS_PER_SEC / 4);
    // Of several tries the quickest counts.
    long long quickest = 10000;
    for (int i = 0; i < 8 && quickest >= 1000; ++i) {
        const long long start = Now();
        TqDownload third(HostName().c_str(), "motd");
        std::thread canceller([&third] {
            usleep(100000);
            third.Cancel();
        });
        EXPECT_EQ(third.ToBuffer(buffer), TqDownload::cancelled);
        quickest = std::min(quickest, Now() - start);
        canceller.join();
    }
    EXPECT_LT(quickest, 1000);
    first.Cancel();
    other.join();
}

TEST_F(TqDownloadFetch, AFileThatDoesNotReachTheDiskIsAFailure) {
    WriteFile(served.Path("motd"), "new");
    WriteFile(directory.Path("motd"), "old");
    const Child server = Serve();
    systemCalls.fsync = [](int) {
        errno = EIO;
        return -1;
    };
    TqDownload download(HostName().c_str(), "motd");
    EXPECT_EQ(download.ToFile(directory.Path("motd").c_str()), TqDownload::refused);
    EXPECT_EQ(TextOf(download), "what came could not be stored (Input/output error)");
    EXPECT_EQ(ReadFile(directory.Path("motd")), "old");
    EXPECT_EQ(directory.Names(), std::vector<std::string>({"motd"}));
}

// The client waits for the block from when it came: nothing interrupts it before that is over, and
// so it has nothing to complain about.
TEST_F(TqDownloadFetch, EveryBlockPutsOffTheNextInterruption) {
    if (runsSlowly) GTEST_SKIP() << "takes too long; the other targets have seen it";
    const std::string path = directory.Path("printed");
    std::string printed;
    for (int i = 0; i < 3; ++i) {
        {
            const PrintedTo file(path);
            const Child server =
                Answer([](const UdpSocket& socket, const Endpoint& client, const Octets& datagram) {
                    const unsigned int block = BlockAskedFor(datagram);
                    if (block > 2) return;
                    usleep(2500000);
                    socket.Send(client, Data(block, Octets(block == 1 ? 512 : 1, 'x')));
                });
            TqBuffer buffer;
            EXPECT_EQ(TqDownload(HostName().c_str(), "motd").ToBuffer(buffer),
                      TqDownload::complete);
        }
        printed = ReadFile(path);
        if (printed.find("failed") == std::string::npos) break;
    }
    EXPECT_EQ(printed.find("failed"), std::string::npos) << printed;
}

// Sockets, which other threads open and close while the client opens its own.

class TqDownloadSockets : public TqDownloadFetch {
protected:
    void SetUp() override {
        TqDownloadFetch::SetUp();
        WriteFile(served.Path("motd"), "hello");
    }

    void TearDown() override {
        systemCalls = SystemCalls();
        for (const int descriptor : opened) close(descriptor);
        TqDownloadFetch::TearDown();
    }

    // From now on this happens whenever the client binds its socket.
    static void Meanwhile(const std::function<void()>& happens) {
        systemCalls.bind = [happens](int descriptor, const sockaddr* address, socklen_t length) {
            happens();
            return bind(descriptor, address, length);
        };
    }

    int Open(int family, int type) {
        opened.push_back(socket(family, type | SOCK_CLOEXEC, 0));
        EXPECT_GE(opened.back(), 0);
        return opened.back();
    }

    // One of the internet's, bound to any port.
    int OpenAt(int type, std::uint32_t host) {
        const int descriptor = Open(AF_INET, type);
        const sockaddr_in address = ToSocketAddress({host, 0});
        EXPECT_EQ(bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        return descriptor;
    }

    void OpenOneLikeTheClients() { OpenAt(SOCK_DGRAM, INADDR_ANY); }

    unsigned int Fetch() {
        TqDownload download(HostName().c_str(), "motd");
        TqBuffer buffer;
        const unsigned int result = download.ToBuffer(buffer);
        text = TextOf(download);
        return result;
    }

    std::vector<int> opened;
    std::string text;
};

TEST_F(TqDownloadSockets, ThoseOfOtherKindsAreNotTakenForTheClients) {
    const Child server = Serve();
    Meanwhile([this] {
        OpenAt(SOCK_STREAM, INADDR_ANY);
        OpenAt(SOCK_DGRAM, Host(1));
        Open(AF_INET, SOCK_DGRAM);
        const int connected = OpenAt(SOCK_DGRAM, INADDR_ANY);
        const sockaddr_in peer = ToSocketAddress({Host(1), 1000});
        EXPECT_EQ(connect(connected, reinterpret_cast<const sockaddr*>(&peer), sizeof peer), 0);
        Open(AF_UNIX, SOCK_DGRAM);
        opened.push_back(open("/dev/null", O_RDONLY | O_CLOEXEC));
    });
    EXPECT_EQ(Fetch(), TqDownload::complete) << text;
}

TEST_F(TqDownloadSockets, OneThatIsClosedMeanwhileIsNotTakenForTheClients) {
    const Child server = Serve();
    OpenOneLikeTheClients();
    int attempts = 0;
    Meanwhile([this, &attempts] {
        for (const int descriptor : opened) close(descriptor);
        opened.clear();
        ++attempts;
    });
    EXPECT_EQ(Fetch(), TqDownload::complete) << text;
    EXPECT_EQ(attempts, 1);
}

TEST_F(TqDownloadSockets, WhereThereAreTwoNewOnesAllIsBegunAnewThreeTimesAtMost) {
    const Child server = Serve();
    unsigned int most = 2;
    Meanwhile([this, &most] {
        if (opened.size() < most) OpenOneLikeTheClients();
    });
    EXPECT_EQ(Fetch(), TqDownload::complete) << text;
    most = 100;
    opened.reserve(most);
    EXPECT_EQ(Fetch(), TFTP_NO_SOCKET);
    EXPECT_EQ(text, "the socket could not be created (Device or resource busy)");
    EXPECT_EQ(opened.size(), 5u);
}

// Descriptor 0 is one like any other.
TEST_F(TqDownloadSockets, TheClientsMayHaveTheLowestNumber) {
    const Child server =
        Answer([](const UdpSocket& socket, const Endpoint& client, const Octets& datagram) {
            if (BlockAskedFor(datagram) == 1) socket.Send(client, Data(1, Octets(512, 'x')));
            if (datagram == Acknowledgement(1)) socket.Send(client, Error(1, "lost"));
        });
    for (const bool isClients : {true, false}) {
        Child child([&] {
            if (isClients) close(0);
            // The second descriptor of the socket gets it otherwise.
            if (!isClients) Meanwhile([] { close(0); });
            if (Fetch() != TFTP_SERVER_ERROR + 1u) _exit(1);
            if (text != "the server has no such file (error 1: lost)") _exit(2);
            if (fcntl(0, F_GETFD) != -1) _exit(3);
            if (!isClients) open("/dev/null", O_RDONLY);
            TqDownload download(HostName().c_str(), "motd");
            if (download.ToFunction([](const unsigned char*, unsigned int) { return false; }) !=
                TqDownload::refused) {
                _exit(4);
            }
            _exit(fcntl(0, F_GETFD) == -1 ? 0 : 5);
        });
        int status = -1;
        ASSERT_TRUE(child.Wait(60000, status));
        EXPECT_EQ(status, 0) << isClients;
    }
}

// What is left behind.

// The mebibytes of this process's memory, used or not: a thread's stack is 8 of them.
unsigned int Mebibytes() {
    return static_cast<unsigned int>(std::stoul(ReadFile("/proc/self/statm")) / 256);
}

TEST_F(TqDownloadFetch, NoThreadsAreLeftBehind) {
    if (runsSlowly) GTEST_SKIP() << "emulators and sanitizers have memory of their own";
    WriteFile(served.Path("motd"), "hello");
    const Child server = Serve();
    const auto fetch = [] {
        TqBuffer buffer;
        EXPECT_EQ(TqDownload(HostName().c_str(), "motd").ToBuffer(buffer), TqDownload::complete);
        TqDownload("::1", "motd").FindServer();
    };
    for (int i = 0; i < 3; ++i) fetch();
    const unsigned int size = Mebibytes();
    for (int i = 0; i < 8; ++i) fetch();
    EXPECT_LT(Mebibytes(), size + 4 * 8);
}

TEST_F(TqDownloadFetch, NoMemoryIsLeftBehindByALookup) {
    if (!heapIsWatched) GTEST_SKIP() << "sanitizers bring their own heap";
    TqDownload download(HostName().c_str(), "motd");
    download.FindServer();
    const int blocks = LiveBlocks();
    for (int i = 0; i < 3; ++i) EXPECT_EQ(download.FindServer(), TqDownload::complete);
    EXPECT_EQ(LiveBlocks(), blocks);
}

TEST_F(TqDownloadFetch, WhatTheNameServiceSaysIsTheReason) {
    TqDownload download("::1", "motd");
    EXPECT_EQ(download.FindServer(), TqDownload::noServer);
    addrinfo wanted = addrinfo();
    wanted.ai_family = AF_INET;
    addrinfo* found = nullptr;
    const int error = getaddrinfo("::1", nullptr, &wanted, &found);
    EXPECT_EQ(TextOf(download), gai_strerror(error));
}

}  // namespace
