#include "TqDownload.h"

#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "Child.h"
#include "Files.h"
#include "Scale.h"
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

}  // namespace
