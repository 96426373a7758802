// The tool tqfetch, run as its users run it.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <netdb.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <set>
#include <system_error>

#include "Child.h"
#include "Files.h"
#include "Netascii.h"
#include "Outcome.h"
#include "Program.h"
#include "RealServer.h"
#include "Scale.h"
#include "TargetFile.h"
#include "TftpHost.h"
#include "TftpProxy.h"
#include "TftpScript.h"
#include "TftpServer.h"

namespace {

using Names = std::vector<std::string>;

// The parts.

std::string Decoded(const std::vector<std::string>& blocks) {
    NetasciiDecoder decoder;
    std::string text;
    for (const std::string& block : blocks) {
        text += decoder.Decode(reinterpret_cast<const unsigned char*>(block.data()), block.size());
    }
    return text + decoder.End();
}

TEST(Netascii, LinesEndWithTheSystemsLineFeed) {
    EXPECT_EQ(Decoded({"one\r\ntwo\r\n"}), "one\ntwo\n");
    EXPECT_EQ(Decoded({std::string("a\r\0b", 4)}), "a\rb");
    EXPECT_EQ(Decoded({"a\nb"}), "a\nb");
    EXPECT_EQ(Decoded({std::string("a\0b", 3)}), std::string("a\0b", 3));
    EXPECT_EQ(Decoded({""}), "");
}

TEST(Netascii, AReturnMayEndABlock) {
    EXPECT_EQ(Decoded({"one\r", "\ntwo"}), "one\ntwo");
    EXPECT_EQ(Decoded({"one\r", std::string("\0two", 4)}), "one\rtwo");
    EXPECT_EQ(Decoded({"one\r", "", "\n"}), "one\n");
}

TEST(Netascii, AReturnBeforeAnythingElseStays) {
    EXPECT_EQ(Decoded({"a\rb"}), "a\rb");
    EXPECT_EQ(Decoded({"a\r\r\nb"}), "a\r\nb");
    EXPECT_EQ(Decoded({"a\r"}), "a\r");
}

TEST(TqfetchOutcome, EveryResultCodeHasASentenceAndAStatusOfItsOwn) {
    const unsigned int results[] = {0x800, 0x802, 0x803, 0x810, 0x811, 0x812,      0x813,
                                    0x814, 0x815, 0x816, 0x817, 0x818, 0xFFFFFFFFu};
    std::set<int> statuses = {0, exitLocalFailure, exitUsage, exitUnknownHost};
    std::set<std::string> sentences = {""};
    for (const unsigned int result : results) {
        const Outcome outcome = OutcomeOf(result);
        EXPECT_TRUE(statuses.insert(outcome.status).second) << result;
        EXPECT_TRUE(sentences.insert(outcome.sentence).second) << result;
    }
    EXPECT_TRUE(statuses.insert(SilenceOutcome(30).status).second);
    EXPECT_TRUE(statuses.insert(TooLargeOutcome().status).second);
    EXPECT_EQ(OutcomeOf(0).status, 0);
    EXPECT_EQ(OutcomeOf(0x819).status, OutcomeOf(0x818).status);
    EXPECT_EQ(OutcomeOf(0x810 + 0xFFFF).sentence, "the server reports error 65535");
}

// Mounts are this process's own from here on. False where that is not allowed.
bool EnterOwnMounts() {
    return unshare(CLONE_NEWNS) == 0 &&
           mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

// Takes /proc away, through which files without a name get one.
bool HideProc() {
    return EnterOwnMounts() && mount("none", "/proc", "tmpfs", 0, nullptr) == 0;
}

bool Works(bool (*function)()) {
    Child child([function] { _exit(function() ? 0 : 1); });
    int status = 1;
    return child.Wait(60000, status) && status == 0;
}

bool MayHideProc() {
    return Works(HideProc);
}

class TqfetchTarget : public testing::Test {
protected:
    Names NamesNow() const { return directory.Names(); }

    const TemporaryDirectory directory;
    const std::string path = directory.Path("file");
};

TEST_F(TqfetchTarget, AFileIsThereOnceItIsComplete) {
    {
        TargetFile target(path, -1);
        target.Write("text", 4);
        EXPECT_FALSE(std::count(NamesNow().begin(), NamesNow().end(), "file"));
        target.Complete();
    }
    EXPECT_EQ(NamesNow(), Names({"file"}));
    EXPECT_EQ(ReadFile(path), "text");
}

TEST_F(TqfetchTarget, AnIncompleteFileLeavesNothing) {
    WriteFile(path, "old");
    { TargetFile(path, -1).Write("new", 3); }
    EXPECT_EQ(NamesNow(), Names({"file"}));
    EXPECT_EQ(ReadFile(path), "old");
}

TEST_F(TqfetchTarget, WithoutProcTheTemporaryFileHasANameAndGoesTheSameWay) {
    if (!MayHideProc()) GTEST_SKIP() << "no mount namespace of its own";
    Child child([this] {
        bool isFine = HideProc();
        {
            TargetFile target(path, -1);
            target.Write("text", 4);
            isFine = isFine && NamesNow().size() == 1 && NamesNow()[0].find(".tqfetch-") == 0;
            target.Complete();
        }
        isFine = isFine && NamesNow() == Names({"file"}) && ReadFile(path) == "text";
        { TargetFile(path, -1).Write("new", 3); }
        isFine = isFine && NamesNow() == Names({"file"}) && ReadFile(path) == "text";
        TargetFile target(path, -1);
        TargetFile::RemoveTemporary();
        isFine = isFine && NamesNow() == Names({"file"});
        _exit(isFine ? 0 : 1);
    });
    int status = 1;
    EXPECT_TRUE(child.Wait(60000, status));
    EXPECT_EQ(status, 0);
}

#ifdef TQFETCH

// The tool.

const int longestTest = 280 * Slowness();  // seconds

class Tqfetch : public testing::Test {
protected:
    void SetUp() override {
        if (!TftpNetworkProblem().empty()) GTEST_SKIP() << TftpNetworkProblem();
        alarm(static_cast<unsigned int>(longestTest));
    }
    void TearDown() override { alarm(0); }

    // The text form of one of the hosts.
    static std::string HostName(unsigned int number = 1) {
        const std::string text = ToText(RequestPort(number));
        return text.substr(0, text.find(':'));
    }

    Program::Settings InDirectory() const {
        Program::Settings settings;
        settings.directory = directory.Path();
        return settings;
    }

    Program::Result Fetch(const std::vector<std::string>& words) const {
        return RunProgram(Built(TQFETCH, words), InDirectory());
    }

    // Serves the directory `served` from a host.
    Child Serve(unsigned int host = 1) const {
        TftpServer::Settings settings;
        settings.directory = served.Path();
        settings.resendAfter = 0;
        auto server = std::make_shared<TftpServer>(UdpSocket(RequestPort(host)), settings);
        return Child([server] {
            while (true) server->Serve(1000);
        });
    }

    // Answers every datagram that comes to host 1, which nothing else does.
    using Answers = std::function<void(const UdpSocket&, const Endpoint& client, const Octets&)>;
    static Child Answer(const Answers& answer) {
        auto socket = std::make_shared<UdpSocket>(RequestPort());
        return Child([socket, answer] {
            Octets datagram;
            Endpoint client;
            while (true) {
                if (socket->Receive(datagram, client, 1000)) answer(*socket, client, datagram);
            }
        });
    }

    // A server that sends so many full blocks and falls silent then.
    static Child AnswerWithBlocks(unsigned int count) {
        return Answer([count](const UdpSocket& socket, const Endpoint& client,
                              const Octets& asked) {
            const unsigned int done = asked[1] == 1 ? 0
                                                    : static_cast<unsigned char>(asked[2]) * 256u +
                                                          static_cast<unsigned char>(asked[3]);
            if (done < count) socket.Send(client, Data(done + 1, Octets(512, 'x')));
        });
    }

    // A server that sends one full block, falls silent and lets the test know. What is read from
    // the descriptor then is one byte.
    static Child AnswerWithOneBlock(int& descriptor) {
        int ends[2];
        EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
        descriptor = ends[0];
        Child child =
            Answer([ends](const UdpSocket& socket, const Endpoint& client, const Octets& datagram) {
                if (datagram[1] == 1) socket.Send(client, Data(1, Octets(512, 'x')));
                if (datagram[1] == 4 && write(ends[1], "x", 1) != 1) _exit(1);
            });
        close(ends[1]);
        return child;
    }

    static void AwaitByte(int descriptor) {
        char byte;
        EXPECT_EQ(read(descriptor, &byte, 1), 1);
        close(descriptor);
    }

    static bool Contains(const std::string& text, const std::string& part) {
        return text.find(part) != std::string::npos;
    }

    const TemporaryDirectory directory;
    const TemporaryDirectory served;
};

TEST_F(Tqfetch, StoresTheFileUnderItsNameAndPrintsNothingIntoPipes) {
    const std::string file = RandomBytes(100000, 1);
    ASSERT_EQ(mkdir(served.Path("folder").c_str(), 0755), 0);
    WriteFile(served.Path("folder/motd"), file);
    const Child server = Serve();
    const Program::Result result = Fetch({HostName(), "folder/motd"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(directory.Names(), Names({"motd"}));
    EXPECT_TRUE(ReadFile(directory.Path("motd")) == file);
}

TEST_F(Tqfetch, StoresTheFileWhereItIsTold) {
    WriteFile(served.Path("motd"), "hello");
    const Child server = Serve();
    EXPECT_EQ(Fetch({"-o", "here", HostName(), "motd"}).status, 0);
    EXPECT_EQ(Fetch({"--output=" + directory.Path("there"), HostName(), "motd"}).status, 0);
    EXPECT_EQ(Fetch({HostName(), "motd", "-ofurther"}).status, 0);
    EXPECT_EQ(directory.Names(), Names({"further", "here", "there"}));
    EXPECT_EQ(ReadFile(directory.Path("here")), "hello");
    EXPECT_EQ(ReadFile(directory.Path("there")), "hello");
    EXPECT_EQ(ReadFile(directory.Path("further")), "hello");
}

TEST_F(Tqfetch, StandardOutputHoldsTheFileAndNothingElse) {
    // Late answers make the client print about select, again and again.
    const std::string file = RandomBytes(1000, 2);
    const Child server =
        Answer([&file](const UdpSocket& socket, const Endpoint& client, const Octets& datagram) {
            usleep(500000);
            const bool isFirst = datagram[1] == 1;
            const unsigned int block = isFirst ? 1 : 2;
            if (isFirst || datagram == Acknowledgement(1)) {
                socket.Send(client, Data(block, file.substr((block - 1) * 512, 512)));
            }
        });
    const Program::Result result = Fetch({"-o", "-", HostName(), "f"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors, "");
    EXPECT_TRUE(result.output == file);
    EXPECT_EQ(directory.Names(), Names());
    const Program::Result stored = Fetch({HostName(), "f"});
    EXPECT_EQ(stored.status, 0);
    EXPECT_EQ(stored.output + stored.errors, "");
    EXPECT_TRUE(ReadFile(directory.Path("f")) == file);
}

TEST_F(Tqfetch, ReplacesTheFileBeforeAndKeepsItsMode) {
    WriteFile(served.Path("motd"), "new");
    WriteFile(directory.Path("motd"), "what was there");
    ASSERT_EQ(chmod(directory.Path("motd").c_str(), 0640), 0);
    const Child server = Serve();
    EXPECT_EQ(Fetch({HostName(), "motd"}).status, 0);
    EXPECT_EQ(ReadFile(directory.Path("motd")), "new");
    struct stat status;
    ASSERT_EQ(stat(directory.Path("motd").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640u);
}

TEST_F(Tqfetch, ANewFileHasTheModeThatTheMaskLeaves) {
    WriteFile(served.Path("motd"), "new");
    const Child server = Serve();
    Program::Settings settings = InDirectory();
    settings.prepare = [] { umask(027); };
    EXPECT_EQ(RunProgram(Built(TQFETCH, {HostName(), "motd"}), settings).status, 0);
    struct stat status;
    ASSERT_EQ(stat(directory.Path("motd").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640u);
}

TEST_F(Tqfetch, ALinkToAFileStaysALink) {
    WriteFile(served.Path("motd"), "new");
    WriteFile(directory.Path("real"), "old");
    ASSERT_EQ(symlink("real", directory.Path("motd").c_str()), 0);
    const Child server = Serve();
    EXPECT_EQ(Fetch({HostName(), "motd"}).status, 0);
    EXPECT_EQ(ReadFile(directory.Path("real")), "new");
    struct stat status;
    ASSERT_EQ(lstat(directory.Path("motd").c_str(), &status), 0);
    EXPECT_TRUE(S_ISLNK(status.st_mode));
}

TEST_F(Tqfetch, ADeviceIsWrittenToAndNotReplaced) {
    WriteFile(served.Path("motd"), "new");
    const Child server = Serve();
    EXPECT_EQ(Fetch({"-o", "/dev/null", HostName(), "motd"}).status, 0);
    struct stat status;
    ASSERT_EQ(stat("/dev/null", &status), 0);
    EXPECT_TRUE(S_ISCHR(status.st_mode));
    const Program::Result full = Fetch({"-o", "/dev/full", HostName(), "motd"});
    EXPECT_EQ(full.status, 1);
    EXPECT_TRUE(Contains(full.errors, strerror(ENOSPC))) << full.errors;
}

TEST_F(Tqfetch, ATargetThatCannotBeIsALocalFailure) {
    // Nobody serves: the target is opened before the server is asked.
    for (const char* target : {"no/such/folder", ".", "/proc/file"}) {
        const Program::Result result = Fetch({"-t", "1", "-o", target, HostName(), "motd"});
        EXPECT_EQ(result.status, 1);
        EXPECT_TRUE(Contains(result.errors, "tqfetch: ")) << result.errors;
        EXPECT_TRUE(Contains(result.errors, target)) << result.errors;
    }
    EXPECT_EQ(directory.Names(), Names());
}

TEST_F(Tqfetch, AFailedTransferLeavesWhatWasThereAndNothingElse) {
    WriteFile(directory.Path("motd"), "old");
    const Child server =
        Answer([](const UdpSocket& socket, const Endpoint& client, const Octets& datagram) {
            socket.Send(client, datagram[1] == 1 ? Data(1, Octets(512, 'x')) : Error(0, "no more"));
        });
    EXPECT_EQ(Fetch({HostName(), "motd"}).status, 16);
    EXPECT_EQ(Fetch({HostName(), "other"}).status, 16);
    EXPECT_EQ(directory.Names(), Names({"motd"}));
    EXPECT_EQ(ReadFile(directory.Path("motd")), "old");
}

TEST_F(Tqfetch, EveryErrorOfTheServerHasItsStatusAndSentence) {
    for (const unsigned int code : {0u, 1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u, 700u}) {
        const Child server =
            Answer([code](const UdpSocket& socket, const Endpoint& client, const Octets&) {
                socket.Send(client, Error(code, ""));
            });
        const Program::Result result = Fetch({HostName(), "motd"});
        EXPECT_EQ(result.status, std::min(16 + static_cast<int>(code), 24));
        EXPECT_EQ(result.output, "");
        EXPECT_EQ(result.errors,
                  "tqfetch: " + HostName() + ": motd: " + OutcomeOf(0x810 + code).sentence + "\n");
    }
}

TEST_F(Tqfetch, AServerThatBreaksTheProtocolHasItsStatus) {
    const Child server = Answer([](const UdpSocket& socket, const Endpoint& client, const Octets&) {
        socket.Send(client, Data(7, "what"));
    });
    EXPECT_EQ(Fetch({HostName(), "motd"}).status, 20);
    EXPECT_EQ(directory.Names(), Names());
}

TEST_F(Tqfetch, ARequestThatCannotBeSentHasItsStatusAndReason) {
    const Program::Result result = Fetch({"-o", "f", HostName(), std::string(70000, 'n')});
    EXPECT_EQ(result.status, 9);
    EXPECT_TRUE(Contains(result.errors, strerror(EMSGSIZE))) << result.errors.substr(70000);
    EXPECT_EQ(directory.Names(), Names());
}

TEST_F(Tqfetch, AMachineWithoutDescriptorsOrMemoryIsNoCrash) {
    WriteFile(served.Path("motd"), "hello");
    const Child server = Serve();
    std::set<int> statuses;
    for (rlim_t limit = 3; limit <= 16; ++limit) {
        Program::Settings settings = InDirectory();
        settings.prepare = [limit] {
            const rlimit few = {limit, limit};
            setrlimit(RLIMIT_NOFILE, &few);
        };
        const Program::Result result = RunProgram(Built(TQFETCH, {HostName(), "motd"}), settings);
        statuses.insert(result.status);
        EXPECT_GE(result.status, 0);
    }
    // Emulators and sanitizers need descriptors themselves.
    if (!runsSlowly || IsOnDevice()) {
        EXPECT_EQ(statuses.count(6), 1u);
    }
    EXPECT_EQ(statuses.count(0), 1u);
    EXPECT_EQ(directory.Names(), Names({"motd"}));
}

TEST_F(Tqfetch, AMachineWithoutAFreePortHasItsStatus) {
    if (!HasOwnNetwork()) GTEST_SKIP() << "this takes a network of its own";
    const char* const range = "/proc/sys/net/ipv4/ip_local_port_range";
    const std::string before = ReadFile(range);
    if (access(range, W_OK) != 0) GTEST_SKIP() << range << " cannot be written";
    WriteFile(range, "40000 40000");
    {
        const UdpSocket occupied({0, 40000});
        const Program::Result result = Fetch({HostName(), "motd"});
        EXPECT_EQ(result.status, 7);
        EXPECT_TRUE(Contains(result.errors, "bound")) << result.errors;
    }
    WriteFile(range, before);
    EXPECT_EQ(directory.Names(), Names());
}

TEST_F(Tqfetch, HostNamesAreResolved) {
    if (!HasOwnNetwork()) GTEST_SKIP() << "the server's address is 127.0.0.1";
    addrinfo* found = nullptr;
    const int error = getaddrinfo("localhost", nullptr, nullptr, &found);
    if (error != 0) GTEST_SKIP() << "no name to resolve here: " << gai_strerror(error);
    freeaddrinfo(found);
    WriteFile(served.Path("motd"), "hello");
    TftpServer::Settings settings;
    settings.directory = served.Path();
    TftpServer server(UdpSocket({INADDR_LOOPBACK, 69}), settings);
    const Child child([&server] {
        while (true) server.Serve(1000);
    });
    const Program::Result result = Fetch({"localhost", "motd"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(ReadFile(directory.Path("motd")), "hello");
}

TEST_F(Tqfetch, AnUnknownNameHasItsStatus) {
    if (!HasOwnNetwork()) GTEST_SKIP() << "nobody outside is to be asked";
    const Program::Result result = Fetch({"-t", "20", "no-such-host.invalid", "motd"});
    EXPECT_EQ(result.status, 3);
    EXPECT_TRUE(Contains(result.errors, "tqfetch: no-such-host.invalid: motd: ")) << result.errors;
    EXPECT_EQ(directory.Names(), Names());
}

TEST_F(Tqfetch, AnAddressOfAnotherProtocolIsNoName) {
    EXPECT_EQ(Fetch({"-t", "1", "::1", "motd"}).status, 3);
}

TEST_F(Tqfetch, ASilentNameServiceIsGivenUp) {
    if (!HasOwnNetwork()) GTEST_SKIP() << "nobody outside is to be asked";
    if (!Works(EnterOwnMounts)) GTEST_SKIP() << "no mount namespace of its own";
    const UdpSocket silent({INADDR_LOOPBACK, 53});
    const std::string configuration = served.Path("resolv.conf");
    WriteFile(configuration, "nameserver 127.0.0.1\noptions timeout:20\n");
    Program::Settings settings = InDirectory();
    settings.prepare = [&configuration] {
        const bool isMounted = EnterOwnMounts() && mount(configuration.c_str(), "/etc/resolv.conf",
                                                         nullptr, MS_BIND, nullptr) == 0;
        if (!isMounted) _exit(125);
    };
    const std::vector<std::string> words = {"-t", "1", "no-such-host.invalid", "motd"};
    const Program::Result result = RunProgram(Built(TQFETCH, words), settings);
    if (result.status == 125) GTEST_SKIP() << "no /etc/resolv.conf to cover";
    EXPECT_EQ(result.status, 3);
    EXPECT_TRUE(Contains(result.errors, "no answer from the name service")) << result.errors;
}

TEST_F(Tqfetch, ClosedStandardDescriptorsDoNotMixWithTheFile) {
    const Child server = AnswerWithBlocks(1);
    const Child good = Serve(2);
    WriteFile(served.Path("motd"), "hello");
    Program::Settings settings = InDirectory();
    settings.prepare = [] {
        for (const int descriptor : {0, 1, 2}) close(descriptor);
    };
    EXPECT_EQ(RunProgram(Built(TQFETCH, {HostName(2), "motd"}), settings).status, 0);
    EXPECT_EQ(ReadFile(directory.Path("motd")), "hello");
    EXPECT_EQ(RunProgram(Built(TQFETCH, {"-o", "-", HostName(2), "motd"}), settings).status, 1);

    // Here there is something to say, and what has been written stays.
    ASSERT_EQ(mkfifo(directory.Path("pipe").c_str(), 0600), 0);
    const int pipe = open(directory.Path("pipe").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    settings.prepare = [] { close(STDERR_FILENO); };
    const std::vector<std::string> words = {"-t", "1", "-o", "pipe", HostName(1), "f"};
    EXPECT_EQ(RunProgram(Built(TQFETCH, words), settings).status, 4);
    char bytes[1024];
    EXPECT_EQ(read(pipe, bytes, sizeof bytes), 512);
    close(pipe);
}

// Silence and loss.

TEST_F(Tqfetch, ASilentServerIsGivenUp) {
    const Child server = Answer([](const UdpSocket&, const Endpoint&, const Octets&) {});
    const long long start = Now();
    const Program::Result result = Fetch({"-t", "1", HostName(), "motd"});
    EXPECT_GE(Now() - start, 900);
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "tqfetch: " + HostName() + ": motd: no new block for 1 second\n");
    EXPECT_EQ(directory.Names(), Names());
}

TEST_F(Tqfetch, AServerThatFallsSilentIsGivenUp) {
    const Child server = AnswerWithBlocks(3);
    const Program::Result result = Fetch({"--timeout=2", HostName(), "motd"});
    EXPECT_EQ(result.status, 4);
    EXPECT_TRUE(Contains(result.errors, "no new block for 2 seconds")) << result.errors;
    EXPECT_EQ(directory.Names(), Names());
}

TEST_F(Tqfetch, RepeatsAndStrangersAreNoNewBlock) {
    const Child server = Answer([](const UdpSocket& socket, const Endpoint& client, const Octets&) {
        const UdpSocket stranger({Host(2), 0});
        while (true) {
            socket.Send(client, Data(1, Octets(512, 'x')));
            stranger.Send(client, Data(2, "evil"));
            usleep(20000);
        }
    });
    const Program::Result result = Fetch({"-t", "1", HostName(), "motd"});
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(directory.Names(), Names());
}

TEST_F(Tqfetch, EveryNewBlockRenewsThePatience) {
    // Longer in all than the time-out, but never at a stretch.
    const Child server =
        Answer([](const UdpSocket& socket, const Endpoint& client, const Octets& datagram) {
            const unsigned int done =
                datagram[1] == 1 ? 0 : static_cast<unsigned char>(datagram[3]);
            usleep(600000);
            if (done < 6) socket.Send(client, Data(done + 1, Octets(done < 5 ? 512 : 0, 'x')));
        });
    EXPECT_EQ(Fetch({"-t", "3", HostName(), "motd"}).status, 0);
    EXPECT_EQ(ReadFile(directory.Path("motd")), Octets(5 * 512, 'x'));
}

// The signal that gets the receive moving must work even where the parent had it blocked or
// ignored.
TEST_F(Tqfetch, ASlowReaderOfTheFileIsNoSilence) {
    const std::string file = RandomBytes(300000, 7);
    WriteFile(served.Path("motd"), file);
    const Child server = Serve();
    Program program(Built(TQFETCH, {"-t", "1", "-o", "-", HostName(), "motd"}), InDirectory());
    // The pipe takes less than the file: the tool waits for it to be read.
    usleep(2000000);
    const Program::Result result = program.Finish();
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(result.output == file);
}

TEST_F(Tqfetch, ABlockedAndIgnoredAlarmOfTheParentDoesNoHarm) {
    const Child server = Answer([](const UdpSocket&, const Endpoint&, const Octets&) {});
    Program::Settings settings = InDirectory();
    settings.prepare = [] {
        sigset_t alarm;
        sigemptyset(&alarm);
        sigaddset(&alarm, SIGALRM);
        sigprocmask(SIG_BLOCK, &alarm, nullptr);
        signal(SIGALRM, SIG_IGN);
    };
    EXPECT_EQ(RunProgram(Built(TQFETCH, {"-t", "1", HostName(), "motd"}), settings).status, 4);
}

TEST_F(Tqfetch, LostPacketsAreRecoveredTheVeryFirstRequestToo) {
    const std::string file = RandomBytes(3000, 3);
    WriteFile(served.Path("motd"), file);
    const Child server = Serve(3);

    // Host 1 never gets the first request. Host 2 does not answer the first acknowledgement of
    // block 1, so that one is lost as well.
    TftpProxy::Troubles troubles;
    troubles.firstLosses = 1;
    TftpProxy proxy(UdpSocket(RequestPort(1)), RequestPort(3), troubles, 1);
    const Child proxyChild([&proxy] {
        while (true) proxy.Serve(1000);
    });
    const UdpSocket deaf(RequestPort(2));
    const Child deafChild([&deaf] {
        Octets datagram;
        Endpoint client;
        for (int acknowledgements = 0;;) {
            if (!deaf.Receive(datagram, client, 1000)) continue;
            if (datagram[1] == 1) deaf.Send(client, Data(1, Octets(512, 'x')));
            if (datagram == Acknowledgement(1) && ++acknowledgements == 2) {
                deaf.Send(client, Data(2, "end"));
            }
        }
    });

    const long long start = Now();
    Program first(Built(TQFETCH, {HostName(1), "motd"}), InDirectory());
    Program second(Built(TQFETCH, {HostName(2), "other"}), InDirectory());
    EXPECT_EQ(first.Finish().status, 0);
    EXPECT_EQ(second.Finish().status, 0);
    EXPECT_GE(Now() - start, 3900);
    EXPECT_TRUE(ReadFile(directory.Path("motd")) == file);
    EXPECT_EQ(ReadFile(directory.Path("other")), Octets(512, 'x') + "end");
}

TEST_F(Tqfetch, AFileWithMoreBlocksThanNumbersIsCalledTooLarge) {
    {
        // Goes on with block 0.
        const Child server = AnswerWithBlocks(70000);
        const Program::Result result = Fetch({"-o", "f", HostName(), "huge"});
        EXPECT_EQ(result.status, 5);
        EXPECT_EQ(result.errors,
                  "tqfetch: " + HostName() + ": huge: " + TooLargeOutcome().sentence + "\n");
        EXPECT_TRUE(Contains(result.errors, "65,535 blocks"));
    }
    {
        // Does not go on.
        const Child server = AnswerWithBlocks(65535);
        const Program::Result result = Fetch({"-t", "3", HostName(), "huge"});
        EXPECT_EQ(result.status, 5);
        EXPECT_TRUE(Contains(result.errors, TooLargeOutcome().sentence)) << result.errors;
    }
    EXPECT_EQ(directory.Names(), Names());
}

class TqfetchTerminal : public Tqfetch {
protected:
    void SetUp() override {
        if (!Program::MayHaveTerminal()) GTEST_SKIP() << "no pseudo-terminals here";
        Tqfetch::SetUp();
    }

    Program::Settings OnTerminal() const {
        Program::Settings settings = InDirectory();
        settings.hasTerminal = true;
        return settings;
    }
};

TEST_F(TqfetchTerminal, ShowsProgress) {
    WriteFile(served.Path("motd"), RandomBytes(1048576, 4));
    const Child server = Serve();
    const Program::Result result = RunProgram(Built(TQFETCH, {HostName(), "motd"}), OnTerminal());
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output.find("\r0 bytes  0 B/s  0:00"), 0u) << result.output;
    const std::size_t last = result.output.find("\r1048576 bytes  ");
    ASSERT_NE(last, std::string::npos) << result.output;
    EXPECT_TRUE(Contains(result.output.substr(last), "B/s  0:")) << result.output;
    EXPECT_EQ(result.output.substr(result.output.size() - 2), "\r\n");
    EXPECT_FALSE(Contains(result.output, "select"));
}

TEST_F(TqfetchTerminal, ShowsNothingWhenAskedForQuietOrPiped) {
    WriteFile(served.Path("motd"), "hello");
    const Child server = Serve();
    Program::Settings terminal = OnTerminal();
    EXPECT_EQ(RunProgram(Built(TQFETCH, {"-q", HostName(), "motd"}), terminal).output, "");
    EXPECT_EQ(RunProgram(Built(TQFETCH, {"--quiet", HostName(), "motd"}), terminal).output, "");
    EXPECT_EQ(RunProgram(Built(TQFETCH, {"-o", "-", HostName(), "motd"}), terminal).output,
              "hello");
    // Either output may be piped.
    Program::Settings piped = OnTerminal();
    piped.prepare = [] { dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDOUT_FILENO); };
    EXPECT_EQ(RunProgram(Built(TQFETCH, {HostName(), "motd"}), piped).output, "");
    terminal.hasErrorPipe = true;
    const Program::Result result = RunProgram(Built(TQFETCH, {HostName(), "motd"}), terminal);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "");
}

TEST_F(TqfetchTerminal, AFailureStartsOnALineOfItsOwn) {
    const Child server = Answer([](const UdpSocket& socket, const Endpoint& client, const Octets&) {
        socket.Send(client, Error(1, ""));
    });
    const Program::Result result = RunProgram(Built(TQFETCH, {HostName(), "motd"}), OnTerminal());
    EXPECT_EQ(result.status, 17);
    EXPECT_TRUE(Contains(result.output, "\r\ntqfetch: " + HostName() + ": motd: "))
        << result.output;
}

TEST_F(TqfetchTerminal, SilenceIsToldOnALineOfItsOwn) {
    const Child server = AnswerWithBlocks(1);
    const std::vector<std::string> words = {"-t", "1", HostName(), "motd"};
    const Program::Result result = RunProgram(Built(TQFETCH, words), OnTerminal());
    EXPECT_EQ(result.status, 4);
    EXPECT_TRUE(Contains(result.output, "\r\ntqfetch: " + HostName() + ": motd: no new block"))
        << result.output;
}

TEST_F(TqfetchTerminal, ControlCEndsItCleanly) {
    int halfWay = -1;
    const Child server = AnswerWithOneBlock(halfWay);
    Program program(Built(TQFETCH, {HostName(), "motd"}), OnTerminal());
    AwaitByte(halfWay);
    program.Type("\x03");
    const Program::Result result = program.Finish();
    EXPECT_EQ(result.status, -SIGINT);
    EXPECT_EQ(result.output.substr(result.output.size() - 2), "\r\n") << result.output;
    EXPECT_EQ(directory.Names(), Names());
}

TEST_F(Tqfetch, KilledHalfWayItLeavesNoFile) {
    for (const int number : {SIGTERM, SIGHUP, SIGQUIT, SIGINT, SIGKILL}) {
        int halfWay = -1;
        const Child server = AnswerWithOneBlock(halfWay);
        Program program(Built(TQFETCH, {HostName(), "motd"}), InDirectory());
        AwaitByte(halfWay);
        program.Signal(number);
        EXPECT_EQ(program.Finish().status, -number);
        const bool mayRemain = number == SIGKILL && !directory.Names().empty();
        if (mayRemain) GTEST_SKIP() << "no files without a name in " << directory.Path();
        EXPECT_EQ(directory.Names(), Names());
    }
}

TEST_F(Tqfetch, KilledHalfWayItLeavesNoFileThatHasAName) {
    if (runsSlowly && !IsOnDevice()) {
        GTEST_SKIP() << "emulators and sanitizers do not start without /proc";
    }
    if (!MayHideProc()) GTEST_SKIP() << "no mount namespace of its own";
    for (const int number : {SIGTERM, SIGINT}) {
        int halfWay = -1;
        const Child server = AnswerWithOneBlock(halfWay);
        Program::Settings settings = InDirectory();
        settings.prepare = [] { HideProc(); };
        Program program(Built(TQFETCH, {HostName(), "motd"}), settings);
        AwaitByte(halfWay);
        EXPECT_EQ(directory.Names().size(), 1u);
        program.Signal(number);
        EXPECT_EQ(program.Finish().status, -number);
        EXPECT_EQ(directory.Names(), Names());
    }
}

TEST_F(Tqfetch, AHangupThatTheParentIgnoredStaysIgnored) {
    int halfWay = -1;
    const Child server = AnswerWithOneBlock(halfWay);
    Program::Settings settings = InDirectory();
    settings.prepare = [] { signal(SIGHUP, SIG_IGN); };
    Program program(Built(TQFETCH, {"-t", "2", HostName(), "motd"}), settings);
    AwaitByte(halfWay);
    program.Signal(SIGHUP);
    EXPECT_EQ(program.Finish().status, 4);
}

// The command line.

TEST_F(Tqfetch, AWrongCommandLineIsToldToStandardError) {
    const std::vector<std::vector<std::string>> wrong = {
        {},
        {"server"},
        {"server", "file", "more"},
        {"-m", "mail", "server", "file"},
        {"-t", "0", "server", "file"},
        {"-t", "-1", "server", "file"},
        {"-t", "1x", "server", "file"},
        {"-t", "", "server", "file"},
        {"-t", "86401", "server", "file"},
        {"-t", "99999999999999999999", "server", "file"},
        {"-x", "server", "file"},
        {"--no-such-option", "server", "file"},
        {"-o"},
        {"server", "folder/"},
        {"server", ""},
        {"server", ".."},
        {"server", "folder/-"},
    };
    for (const std::vector<std::string>& words : wrong) {
        const Program::Result result = Fetch(words);
        EXPECT_EQ(result.status, 2) << testing::PrintToString(words);
        EXPECT_EQ(result.output, "") << testing::PrintToString(words);
        EXPECT_NE(result.errors, "") << testing::PrintToString(words);
    }
    EXPECT_EQ(directory.Names(), Names());
}

TEST_F(Tqfetch, HelpAndManualTellTheSame) {
    const Program::Result help = Fetch({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.errors, "");
    EXPECT_EQ(Fetch({"-h"}).output, help.output);
    std::string manual = ReadFile(TQFETCH_MANUAL);
    manual.erase(std::remove(manual.begin(), manual.end(), '\\'), manual.end());
    for (const char* option : {"mode", "output", "timeout", "quiet", "help"}) {
        EXPECT_TRUE(Contains(help.output, "--" + std::string(option))) << option;
        EXPECT_TRUE(Contains(manual, "--" + std::string(option))) << option;
        EXPECT_TRUE(Contains(help.output, std::string("-") + option[0] + ", --" + option));
        EXPECT_TRUE(Contains(manual, std::string("-") + option[0])) << option;
    }
    for (const int status : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 16, 17, 18, 19, 20, 21, 22, 23, 24}) {
        EXPECT_TRUE(Contains(manual, ".B " + std::to_string(status) + "\n")) << status;
    }
}

// Modes, and real servers.

TEST_F(Tqfetch, TheModeIsTheOneAskedForAndOctetWithoutASking) {
    const Child server =
        Answer([](const UdpSocket& socket, const Endpoint& client, const Octets& datagram) {
            // The file that it sends is the request.
            if (datagram[1] == 1) socket.Send(client, Data(1, datagram.substr(2)));
        });
    EXPECT_EQ(Fetch({"-o", "-", HostName(), "f"}).output, std::string("f\0octet\0", 8));
    EXPECT_EQ(Fetch({"-o", "-", "-m", "octet", HostName(), "f"}).output,
              std::string("f\0octet\0", 8));
    EXPECT_EQ(Fetch({"-o", "-", "--mode=netascii", HostName(), "f"}).output,
              std::string("f\0netascii\0", 11));
    EXPECT_EQ(Fetch({"-o", "-", "-m", "NetASCII", HostName(), "f"}).output,
              std::string("f\0netascii\0", 11));
}

TEST_F(Tqfetch, OnlyTextIsConverted) {
    const std::string text = "line\r\nline\r\n\r";
    const Child server =
        Answer([&text](const UdpSocket& socket, const Endpoint& client, const Octets& datagram) {
            if (datagram[1] == 1) socket.Send(client, Data(1, text));
        });
    EXPECT_EQ(Fetch({"-o", "-", HostName(), "f"}).output, text);
    EXPECT_EQ(Fetch({"-o", "-", "-m", "netascii", HostName(), "f"}).output, "line\nline\n\r");
}

class TqfetchServers : public Tqfetch, public testing::WithParamInterface<RealServer::Program> {
protected:
    void SetUp() override {
        Tqfetch::SetUp();
        if (IsSkipped()) return;
        const std::string problem = RealServer::Problem(GetParam());
        if (!problem.empty()) GTEST_SKIP() << problem;
    }
};

TEST_P(TqfetchServers, FilesOfEverySizeComeByteForByte) {
    const RealServer server(GetParam(), served.Path());
    for (const std::size_t length : {0u, 1u, 511u, 512u, 513u, 65536u, 1048576u}) {
        const std::string file = RandomBytes(length, static_cast<unsigned int>(length));
        const std::string name = std::to_string(length);
        WriteFile(served.Path(name), file);
        EXPECT_EQ(Fetch({HostName(), name}).status, 0) << length;
        EXPECT_TRUE(ReadFile(directory.Path(name)) == file) << length;
    }
}

TEST_P(TqfetchServers, TheLargestFileComesByteForByte) {
    if (runsSlowly) GTEST_SKIP() << "takes too long; the client's own test reads such a file";
    const RealServer server(GetParam(), served.Path());
    const std::string file = RandomBytes(65535 * 512 - 1, 1);
    WriteFile(served.Path("largest"), file);
    EXPECT_EQ(Fetch({HostName(), "largest"}).status, 0);
    EXPECT_TRUE(ReadFile(directory.Path("largest")) == file);
}

TEST_P(TqfetchServers, FilesThatAreMissingOrSecretHaveTheirStatus) {
    const RealServer server(GetParam(), served.Path());
    EXPECT_EQ(Fetch({HostName(), "missing"}).status, 17);
    WriteFile(served.Path("secret"), "secret");
    ASSERT_EQ(chmod(served.Path("secret").c_str(), 0600), 0);
    EXPECT_EQ(Fetch({HostName(), "secret"}).status, 18);
    EXPECT_EQ(directory.Names(), Names());
}

TEST_P(TqfetchServers, TextComesWithTheSystemsLines) {
    const RealServer server(GetParam(), served.Path());
    const std::string text = std::string(511, 'x') + "\nline\n\n\nend\n" + std::string(600, '\n');
    WriteFile(served.Path("text"), text);
    EXPECT_EQ(Fetch({"-m", "netascii", HostName(), "text"}).status, 0);
    EXPECT_EQ(ReadFile(directory.Path("text")), text);
}

std::string NameOf(const testing::TestParamInfo<RealServer::Program>& program) {
    return program.param == RealServer::tftpdHpa ? "tftpd_hpa" : "dnsmasq";
}

INSTANTIATE_TEST_SUITE_P(, TqfetchServers,
                         testing::Values(RealServer::tftpdHpa, RealServer::dnsmasq), NameOf);

#endif

}  // namespace
