// The example's server: what it answers, and the program around it.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/capability.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <poll.h>
#include <sched.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "Child.h"
#include "Files.h"
#include "Program.h"
#include "Scale.h"
#include "SystemCalls.h"
#include "TftpHost.h"
#include "TftpScript.h"
#include "TftpServer.h"
#include "TftpTest.h"

namespace {

// From here on this process is root for no file any more.
void DropCapabilities() {
    __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct none[2] = {};
    syscall(SYS_capset, &header, none);
}

class TftpServerTest : public testing::Test {
protected:
    void SetUp() override {
        if (!TftpNetworkProblem().empty()) GTEST_SKIP() << TftpNetworkProblem();
        served.directory = directory.Path();
        served.repeatAfter = 0;
        served.resendAfter = 0;
    }

    void TearDown() override { systemCalls = SystemCalls(); }

    // From here on no time passes except where the test lets it.
    void StopTheClock() {
        systemCalls.clock_gettime = [this] { return now; };
    }

    void Pass(int milliseconds) {
        const long nanoseconds = now.tv_nsec + milliseconds * 1000000L;
        now.tv_sec += nanoseconds / 1000000000L;
        now.tv_nsec = nanoseconds % 1000000000L;
    }

    // What the server sends to a client of its own, at once or never; from where is in `sender`.
    static Octets Answer(TftpServer& server, const UdpSocket& client, const Endpoint& to,
                         const Octets& packet) {
        client.Send(to, packet);
        server.Serve(1000);
        Octets answer;
        if (!client.Receive(answer, sender, 0)) return "nothing";
        return answer;
    }

    Octets AnswerToPacket(const Octets& packet) const {
        TftpServer server(UdpSocket(RequestPort()), served);
        return Answer(server, UdpSocket({Host(2), 0}), RequestPort(), packet);
    }

    Octets AnswerTo(const std::string& name) const {
        return AnswerToPacket(Request(name, "octet"));
    }

    // Whether a server that is root for no file answers this.
    bool IsAnswerWithoutCapabilities(const std::string& name, const Octets& expected) const {
        Child child([&] {
            UdpSocket listener(RequestPort());
            DropCapabilities();
            TftpServer server(std::move(listener), served);
            const UdpSocket client({Host(2), 0});
            const Octets answer = Answer(server, client, RequestPort(), Request(name, "octet"));
            _exit(answer == expected ? 0 : 1);
        });
        int status = -1;
        return child.Wait(60000, status) && status == 0;
    }

    // What the server sends to a client who has sent nothing.
    static Octets Sent(TftpServer& server, const UdpSocket& client) {
        server.Serve(0);
        Octets packet;
        return client.Receive(packet, sender, 0) ? packet : "nothing";
    }

    // What it sends then, if it still knows of the transfer.
    static Octets AnswerIfAny(TftpServer& server, const UdpSocket& client, const Endpoint& to,
                              const Octets& packet) {
        client.Send(to, packet);
        return Sent(server, client);
    }

    const TemporaryDirectory directory;
    TftpServer::Settings served;
    timespec now = {1000, 900000000};
    static Endpoint sender;
};

Endpoint TftpServerTest::sender;

const Octets errors[] = {
    Error(4, "Only read requests"), Error(0, ""),         Octets("\0\5", 2), Octets("\0\5\0", 3),
    Octets("\0\5\0\1", 4),          Octets("\0\5text", 6)};

TEST_F(TftpServerTest, AnErrorIsNeverAnswered) {
    TftpServer server(UdpSocket(RequestPort()), served);
    const UdpSocket client({Host(2), 0});
    for (const Octets& error : errors) {
        EXPECT_EQ(Answer(server, client, RequestPort(), error), "nothing");
    }
    EXPECT_NE(Answer(server, client, RequestPort(), Acknowledgement(1)), "nothing");
}

TEST_F(TftpServerTest, AnErrorFromAClientAtTheRequestPortRepeatsNothing) {
    WriteFile(directory.Path("file"), "hello");
    TftpServer server(UdpSocket(RequestPort()), served);
    const UdpSocket client({Host(2), 0});
    EXPECT_EQ(Answer(server, client, RequestPort(), Request("file", "octet")), Data(1, "hello"));
    for (const Octets& error : errors) {
        EXPECT_EQ(Answer(server, client, RequestPort(), error), "nothing");
    }
    EXPECT_EQ(Answer(server, client, RequestPort(), Request("file", "octet")), Data(1, "hello"));
}

TEST_F(TftpServerTest, AStrangersErrorIsNotAnsweredAndEndsNoTransfer) {
    WriteFile(directory.Path("file"), Block(1) + "end");
    TftpServer server(UdpSocket(RequestPort()), served);
    const UdpSocket client({Host(2), 0});
    const UdpSocket stranger({Host(3), 0});
    EXPECT_EQ(Answer(server, client, RequestPort(), Request("file", "octet")), Data(1, Block(1)));
    const Endpoint transfer = sender;
    for (const Octets& error : errors) {
        EXPECT_EQ(Answer(server, stranger, transfer, error), "nothing");
    }
    EXPECT_EQ(Answer(server, stranger, transfer, Acknowledgement(1)),
              Error(5, "Not your transfer"));
    EXPECT_EQ(Answer(server, client, transfer, Acknowledgement(1)), Data(2, "end"));
}

TEST_F(TftpServerTest, LinksAreFollowedInsideTheDirectoryOnly) {
    const TemporaryDirectory outside;
    WriteFile(outside.Path("secret"), "secret");
    WriteFile(directory.Path("file"), "hello");
    ASSERT_EQ(mkdir(directory.Path("sub").c_str(), 0755), 0);
    WriteFile(directory.Path("sub/file"), "below");
    const auto link = [this](const std::string& target, const char* name) {
        ASSERT_EQ(symlink(target.c_str(), directory.Path(name).c_str()), 0);
    };
    link(outside.Path("secret"), "absolute");
    link(outside.Path(), "folder");
    link("../" + outside.Path().substr(outside.Path().rfind('/') + 1) + "/secret", "relative");
    link("absolute", "twice");
    link(directory.Path("sub"), "inside");
    link("sub/../file", "same");
    link("nowhere", "dangling");
    for (const char* name : {"absolute", "folder/secret", "relative", "twice", "dangling", "inside",
                             ".", "sub/../file", "/file", ""}) {
        EXPECT_EQ(AnswerTo(name), Error(1, "No such file")) << name;
    }
    EXPECT_EQ(AnswerTo("file"), Data(1, "hello"));
    EXPECT_EQ(AnswerTo("same"), Data(1, "hello"));
    EXPECT_EQ(AnswerTo("inside/file"), Data(1, "below"));
    EXPECT_EQ(AnswerTo("sub//file"), Data(1, "below"));
}

TEST_F(TftpServerTest, ADirectoryThatIsALinkIsServed) {
    WriteFile(directory.Path("file"), "hello");
    const TemporaryDirectory other;
    ASSERT_EQ(symlink(directory.Path().c_str(), other.Path("link").c_str()), 0);
    served.directory = other.Path("link");
    EXPECT_EQ(AnswerTo("file"), Data(1, "hello"));
}

TEST_F(TftpServerTest, AFileThatMayNotBeReadIsError2) {
    WriteFile(directory.Path("file"), "hello");
    ASSERT_EQ(chmod(directory.Path("file").c_str(), 0), 0);
    EXPECT_TRUE(IsAnswerWithoutCapabilities("file", Error(2, "May not be read")));
}

TEST_F(TftpServerTest, AFileInAFolderThatMayOnlyBeSearchedIsServed) {
    ASSERT_EQ(mkdir(directory.Path("sub").c_str(), 0755), 0);
    WriteFile(directory.Path("sub/file"), "hello");
    ASSERT_EQ(chmod(directory.Path("sub").c_str(), 0111), 0);
    EXPECT_TRUE(IsAnswerWithoutCapabilities("sub/file", Data(1, "hello")));
    ASSERT_EQ(chmod(directory.Path("sub").c_str(), 0755), 0);
}

TEST_F(TftpServerTest, OnlyReadRequestsInOctetModeAreServed) {
    WriteFile(directory.Path("file"), "hello");
    EXPECT_EQ(AnswerToPacket(Request("file", "OcTeT")), Data(1, "hello"));
    EXPECT_EQ(AnswerToPacket(Octets("\0\2file\0octet\0", 13)), Error(4, "Only read requests"));
    EXPECT_EQ(AnswerToPacket(Octets("\1\1file\0octet\0", 13)), Error(4, "Only read requests"));
    EXPECT_EQ(AnswerToPacket(Octets("\0\1file\0octet", 12)), Error(4, "Only read requests"));
    EXPECT_EQ(AnswerToPacket(Octets("\0\1", 2)), Error(4, "Only read requests"));
    EXPECT_EQ(AnswerToPacket(""), Error(4, "Only read requests"));
    EXPECT_EQ(AnswerToPacket(Request("file", "netascii")), Error(4, "Only octet mode"));
    EXPECT_EQ(AnswerToPacket(Octets("\0\1file\0", 7)), Error(4, "Only octet mode"));
}

TEST_F(TftpServerTest, OptionsBehindARequestAreIgnored) {
    WriteFile(directory.Path("file"), "hello");
    EXPECT_EQ(AnswerToPacket(Request("file", "octet") + Octets("blksize\0001024\0", 13)),
              Data(1, "hello"));
}

TEST_F(TftpServerTest, NamesThatLeadUpAreRefusedEvenWhenTheyComeBack) {
    WriteFile(directory.Path("file"), "hello");
    WriteFile(directory.Path("..file"), "dots");
    const std::string name = directory.Path().substr(directory.Path().rfind('/') + 1);
    EXPECT_EQ(AnswerTo("../" + name + "/file"), Error(1, "No such file"));
    EXPECT_EQ(AnswerTo(".."), Error(1, "No such file"));
    EXPECT_EQ(AnswerTo("..file"), Data(1, "dots"));
}

#ifndef TQ_EMULATED  // which looks for files elsewhere first
TEST_F(TftpServerTest, TheRootOfAllFilesMayBeServed) {
    WriteFile(directory.Path("file"), "hello");
    served.directory = "/";
    EXPECT_EQ(AnswerTo(directory.Path("file").substr(1)), Data(1, "hello"));
}
#endif

TEST_F(TftpServerTest, ALinkThatIsPutThereMeanwhileIsNotFollowed) {
    const TemporaryDirectory outside;
    WriteFile(outside.Path("file"), "secret");
    WriteFile(directory.Path("file"), "hello");
    ASSERT_EQ(mkdir(directory.Path("sub").c_str(), 0755), 0);
    WriteFile(directory.Path("sub/file"), "below");
    systemCalls.stat = [&](const char* path, struct stat* status) {
        const int result = stat(path, status);
        rename(directory.Path("sub").c_str(), directory.Path("moved").c_str());
        EXPECT_EQ(symlink(outside.Path().c_str(), directory.Path("sub").c_str()), 0);
        return result;
    };
    EXPECT_EQ(AnswerTo("sub/file"), Error(2, "May not be read"));
    systemCalls.stat = [&](const char* path, struct stat* status) {
        const int result = stat(path, status);
        unlink(directory.Path("file").c_str());
        EXPECT_EQ(symlink(outside.Path("file").c_str(), directory.Path("file").c_str()), 0);
        return result;
    };
    EXPECT_EQ(AnswerTo("file"), Error(2, "May not be read"));
}

TEST_F(TftpServerTest, APipeThatIsPutThereMeanwhileStopsNobody) {
    WriteFile(directory.Path("file"), "hello");
    systemCalls.stat = [&](const char* path, struct stat* status) {
        const int result = stat(path, status);
        unlink(directory.Path("file").c_str());
        EXPECT_EQ(mkfifo(directory.Path("file").c_str(), 0600), 0);
        return result;
    };
    EXPECT_EQ(AnswerTo("file"), Data(1, ""));
}

TEST_F(TftpServerTest, AFileThatCannotBeReadToItsEndIsRefused) {
    WriteFile(directory.Path("file"), "x");
    EXPECT_EQ(AnswerTo("file"), Data(1, "x"));
    served.directory = "/proc/self";
    EXPECT_EQ(AnswerTo("mem"), Error(0, "Cannot be read"));
}

TEST_F(TftpServerTest, AFileHasUpTo65535Blocks) {
    const off_t longest = 65535 * 512 - 1;
    WriteFile(directory.Path("file"), "hello");
    const Octets first = "hello" + Octets(507, '\0');
    ASSERT_EQ(truncate(directory.Path("file").c_str(), longest), 0);
    EXPECT_EQ(AnswerTo("file"), Data(1, first));
    ASSERT_EQ(truncate(directory.Path("file").c_str(), longest + 1), 0);
    EXPECT_EQ(AnswerTo("file"), Error(0, "More than 65535 blocks"));
}

TEST_F(TftpServerTest, AFileOfFullBlocksEndsWithAnEmptyOne) {
    WriteFile(directory.Path("file"), Block(1));
    TftpServer server(UdpSocket(RequestPort()), served);
    const UdpSocket client({Host(2), 0});
    EXPECT_EQ(Answer(server, client, RequestPort(), Request("file", "octet")), Data(1, Block(1)));
    const Endpoint transfer = sender;
    EXPECT_EQ(Answer(server, client, transfer, Acknowledgement(1)), Data(2, ""));
    EXPECT_EQ(AnswerIfAny(server, client, transfer, Acknowledgement(2)), "nothing");
    EXPECT_EQ(AnswerIfAny(server, client, transfer, Acknowledgement(1)), "nothing");
}

TEST_F(TftpServerTest, BlocksAreNumberedInTwoBytes) {
    Octets file;
    for (unsigned int block = 1; block <= 257; ++block) file += Block(block);
    WriteFile(directory.Path("file"), file);
    TftpServer server(UdpSocket(RequestPort()), served);
    const UdpSocket client({Host(2), 0});
    EXPECT_EQ(Answer(server, client, RequestPort(), Request("file", "octet")), Data(1, Block(1)));
    const Endpoint transfer = sender;
    for (unsigned int block = 1; block <= 256; ++block) {
        ASSERT_EQ(Answer(server, client, transfer, Acknowledgement(block)),
                  Data(block + 1, Block(block + 1)));
    }
}

TEST_F(TftpServerTest, AnErrorOfTheClientEndsItsTransfer) {
    WriteFile(directory.Path("file"), Block(1) + "end");
    TftpServer server(UdpSocket(RequestPort()), served);
    const UdpSocket client({Host(2), 0});
    EXPECT_EQ(Answer(server, client, RequestPort(), Request("file", "octet")), Data(1, Block(1)));
    const Endpoint transfer = sender;
    EXPECT_EQ(AnswerIfAny(server, client, transfer, Error(3, "Disk full")), "nothing");
    EXPECT_EQ(AnswerIfAny(server, client, transfer, Acknowledgement(1)), "nothing");
    EXPECT_EQ(Answer(server, client, RequestPort(), Request("file", "octet")), Data(1, Block(1)));
}

TEST_F(TftpServerTest, WhatAcknowledgesNoBlockOfTheTwoLastChangesNothing) {
    WriteFile(directory.Path("file"), Block(1) + Block(2) + "end");
    TftpServer server(UdpSocket(RequestPort()), served);
    const UdpSocket client({Host(2), 0});
    EXPECT_EQ(Answer(server, client, RequestPort(), Request("file", "octet")), Data(1, Block(1)));
    const Endpoint transfer = sender;
    for (const Octets& packet :
         {Octets(), Octets("\0\4", 2), Octets("\0\4\0", 3), Data(1, ""), Acknowledgement(2),
          Acknowledgement(257), Acknowledgement(65535), Octets("\1\4\0\1", 4)}) {
        EXPECT_EQ(Answer(server, client, transfer, packet), "nothing");
    }
    EXPECT_EQ(Answer(server, client, transfer, Acknowledgement(1)), Data(2, Block(2)));
    EXPECT_EQ(Answer(server, client, transfer, Acknowledgement(2)), Data(3, "end"));
    EXPECT_EQ(Answer(server, client, transfer, Acknowledgement(1)), "nothing");
}

TEST_F(TftpServerTest, ARepeatIsAnsweredAfterAPause) {
    WriteFile(directory.Path("file"), Block(1) + "end");
    served.repeatAfter = 500;
    StopTheClock();
    TftpServer server(UdpSocket(RequestPort()), served);
    const UdpSocket client({Host(2), 0});
    const Octets request = Request("file", "octet");
    EXPECT_EQ(Answer(server, client, RequestPort(), request), Data(1, Block(1)));
    Pass(499);
    EXPECT_EQ(Answer(server, client, RequestPort(), request), "nothing");
    Pass(1);
    EXPECT_EQ(Answer(server, client, RequestPort(), request), Data(1, Block(1)));
    const Endpoint transfer = sender;
    EXPECT_EQ(Answer(server, client, transfer, Acknowledgement(1)), Data(2, "end"));
    EXPECT_EQ(Answer(server, client, transfer, Acknowledgement(1)), "nothing");
    Pass(500);
    EXPECT_EQ(Answer(server, client, transfer, Acknowledgement(1)), Data(2, "end"));
}

TEST_F(TftpServerTest, ASilentClientIsSentTheBlockAgainAndThenGivenUp) {
    WriteFile(directory.Path("file"), Block(1) + "end");
    served.resendAfter = 100;
    served.resends = 2;
    StopTheClock();
    TftpServer server(UdpSocket(RequestPort()), served);
    const UdpSocket client({Host(2), 0});
    EXPECT_EQ(Answer(server, client, RequestPort(), Request("file", "octet")), Data(1, Block(1)));
    const Endpoint transfer = sender;
    for (int i = 0; i < 2; ++i) {
        Pass(99);
        EXPECT_EQ(Sent(server, client), "nothing");
        Pass(1);
        EXPECT_EQ(Sent(server, client), Data(1, Block(1)));
    }
    EXPECT_EQ(Answer(server, client, transfer, Acknowledgement(1)), Data(2, "end"));
    for (int i = 0; i < 2; ++i) {
        Pass(100);
        EXPECT_EQ(Sent(server, client), Data(2, "end"));
    }
    Pass(100);
    EXPECT_EQ(Sent(server, client), "nothing");
    EXPECT_EQ(AnswerIfAny(server, client, transfer, Acknowledgement(1)), "nothing");
}

TEST_F(TftpServerTest, AClientThatNeverAnswersIsSentTheFirstBlockAsOften) {
    WriteFile(directory.Path("file"), "hello");
    served.resendAfter = 100;
    served.resends = 1;
    StopTheClock();
    TftpServer server(UdpSocket(RequestPort()), served);
    const UdpSocket client({Host(2), 0});
    EXPECT_EQ(Answer(server, client, RequestPort(), Request("file", "octet")), Data(1, "hello"));
    Pass(100);
    EXPECT_EQ(Sent(server, client), Data(1, "hello"));
    Pass(100);
    EXPECT_EQ(Sent(server, client), "nothing");
}

TEST_F(TftpServerTest, OfMoreThan64TransfersTheOldestIsDropped) {
    WriteFile(directory.Path("file"), Block(1) + "end");
    TftpServer server(UdpSocket(RequestPort()), served);
    std::vector<UdpSocket> clients;
    std::vector<Endpoint> transfers;
    for (int i = 0; i < 65; ++i) {
        clients.emplace_back(Endpoint{Host(2), 0});
        EXPECT_EQ(Answer(server, clients.back(), RequestPort(), Request("file", "octet")),
                  Data(1, Block(1)));
        transfers.push_back(sender);
    }
    EXPECT_EQ(AnswerIfAny(server, clients[0], transfers[0], Acknowledgement(1)), "nothing");
    EXPECT_EQ(Answer(server, clients[1], transfers[1], Acknowledgement(1)), Data(2, "end"));
}

TEST_F(TftpServerTest, WhatIsOverLeavesNoDescriptorBehind) {
    ASSERT_EQ(mkdir(directory.Path("sub").c_str(), 0755), 0);
    WriteFile(directory.Path("sub/file"), "hello");
    TftpServer server(UdpSocket(RequestPort()), served);
    const UdpSocket client({Host(2), 0});
    const std::vector<int> before = TftpTest::Descriptors();
    EXPECT_EQ(Answer(server, client, RequestPort(), Request("missing", "octet")),
              Error(1, "No such file"));
    EXPECT_EQ(Answer(server, client, RequestPort(), Request("sub/file", "octet")),
              Data(1, "hello"));
    EXPECT_EQ(AnswerIfAny(server, client, sender, Acknowledgement(1)), "nothing");
    EXPECT_NO_THROW(TftpServer::CheckDirectory(directory.Path()));
    EXPECT_EQ(TftpTest::Descriptors(), before);
}

TEST_F(TftpServerTest, ItWaitsUntilABlockIsDueOrAPacketComes) {
    WriteFile(directory.Path("file"), Block(1) + "end");
    served.resendAfter = 50;
    TftpServer server(UdpSocket(RequestPort()), served);
    const UdpSocket client({Host(2), 0});
    const long long start = Now();
    client.Send(RequestPort(), Request("file", "octet"));
    server.Serve(60000);
    server.Serve(60000);
    EXPECT_GE(Now() - start, 50);
    Octets packet;
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(client.Receive(packet, sender, 0));
        EXPECT_EQ(packet, Data(1, Block(1)));
    }
    EXPECT_LT(Now() - start, 30000);
}

TEST_F(TftpServerTest, ItWaitsAsLongAsToldWhereTheClientIsToSendAgain) {
    WriteFile(directory.Path("file"), Block(1) + "end");
    TftpServer server(UdpSocket(RequestPort()), served);
    const UdpSocket client({Host(2), 0});
    EXPECT_EQ(Answer(server, client, RequestPort(), Request("file", "octet")), Data(1, Block(1)));
    const long long start = Now();
    server.Serve(30);
    EXPECT_GE(Now() - start, 30);
    client.Send(sender, Acknowledgement(1));
    server.Serve(60000);
    EXPECT_LT(Now() - start, 30000);
}

TEST_F(TftpServerTest, ItDoesNotStartWithADirectoryThatCannotBeServed) {
    served.directory = directory.Path("missing");
    EXPECT_THROW(TftpServer(UdpSocket(RequestPort()), served), std::system_error);
}

TEST(TftpServer, ADirectoryThatCannotBeServedIsAnError) {
    const TemporaryDirectory directory;
    WriteFile(directory.Path("file"), "hello");
    EXPECT_NO_THROW(TftpServer::CheckDirectory(directory.Path()));
    EXPECT_THROW(TftpServer::CheckDirectory(directory.Path("file")), std::system_error);
    EXPECT_THROW(TftpServer::CheckDirectory(directory.Path("missing")), std::system_error);
    for (const mode_t mode : {0000u, 0300u, 0400u}) {
        const std::string name = directory.Path(std::to_string(mode));
        ASSERT_EQ(mkdir(name.c_str(), 0755), 0);
        ASSERT_EQ(chmod(name.c_str(), mode), 0);
        Child child([&] {
            DropCapabilities();
            try {
                TftpServer::CheckDirectory(name);
            } catch (const std::system_error&) {
                _exit(0);
            }
            _exit(1);
        });
        int status = -1;
        ASSERT_TRUE(child.Wait(60000, status));
        EXPECT_EQ(status, 0) << mode;
        ASSERT_EQ(chmod(name.c_str(), 0755), 0);
    }
}

#ifdef TFTPSERVE

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

TEST(TftpserveUsage, HelpIsNoError) {
    const Program::Result result = RunProgram(Built(TFTPSERVE, {"--help"}));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, usage);
    EXPECT_EQ(result.errors, "");
}

TEST(TftpserveUsage, AWrongCommandLineHasStatus2) {
    for (const std::vector<std::string>& words :
         std::vector<std::vector<std::string>>{{}, {"-n"}, {"-x", "."}, {"-n", "-x"}}) {
        const Program::Result result = RunProgram(Built(TFTPSERVE, words));
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.output, "");
        EXPECT_EQ(result.errors, usage);
    }
}

TEST(TftpserveUsage, AFolderThatCannotBeServedIsToldBeforeAnythingElse) {
    const TemporaryDirectory directory;
    const std::string missing = directory.Path("missing");
    const Program::Result result = RunProgram(Built(TFTPSERVE, {missing, "true"}));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "tftpserve: " + missing + ": No such file or directory\n");
}

// All on one processor: whoever waits for a process's end is then told of it before anything that
// was left behind can end too.
class OneProcessor {
public:
    OneProcessor() {
        sched_getaffinity(0, sizeof before, &before);
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(static_cast<std::size_t>(sched_getcpu()), &one);
        sched_setaffinity(0, sizeof one, &one);
    }
    OneProcessor(const OneProcessor&) = delete;
    OneProcessor& operator=(const OneProcessor&) = delete;
    ~OneProcessor() { sched_setaffinity(0, sizeof before, &before); }

private:
    cpu_set_t before;
};

// The program with a command that says when it has started, by a pipe of which it holds an end for
// as long as it lives.
class Tftpserve : public testing::Test {
protected:
    void SetUp() override {
        if (!TftpNetworkProblem().empty()) GTEST_SKIP() << TftpNetworkProblem();
        if (!HasOwnNetwork()) GTEST_SKIP() << "this takes a network of its own";
        ASSERT_EQ(pipe2(held, O_CLOEXEC), 0);
    }

    void TearDown() override {
        for (const int end : held) {
            if (end >= 0) close(end);
        }
    }

    // Runs until the command says that it has started, before and after other things.
    void Start(const std::string& before = "", const std::string& after = "exec sleep 600") {
        const std::string started = before + "echo started >&9; " + after;
        const std::vector<std::string> words =
            Built(TFTPSERVE, {directory.Path(), "sh", "-c", started});
        child.reset(new Child([&] {
            const rlimit noCore = {0, 0};
            setrlimit(RLIMIT_CORE, &noCore);
            dup2(held[1], 9);
            Become(words);
        }));
        close(held[1]);
        held[1] = -1;
        ASSERT_EQ(Told(8), "started\n");
    }

    static void Become(const std::vector<std::string>& words) {
        std::vector<char*> arguments;
        for (const std::string& word : words) arguments.push_back(strdup(word.c_str()));
        arguments.push_back(nullptr);
        execvp(arguments[0], arguments.data());
        _exit(127);
    }

    // So many bytes that the command says; fewer when it ends before.
    std::string Told(std::size_t length) const {
        std::string text(length, '\0');
        const ssize_t count = read(held[0], &text[0], length);
        return text.substr(0, static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }

    Program::Result Run(
        const std::vector<std::string>& words, const std::function<void()>& prepare = [] {}) const {
        Program::Settings settings;
        settings.prepare = prepare;
        return RunProgram(Built(TFTPSERVE, words), settings);
    }

    // Whether the command ends within this time; 0 asks whether it has.
    bool IsCommandGone(int milliseconds) const {
        pollfd end = {held[0], POLLIN, 0};
        return poll(&end, 1, milliseconds) == 1 && (end.revents & POLLHUP) != 0;
    }

    static bool IsPortFree() {
        try {
            const UdpSocket socket({INADDR_LOOPBACK, 69});
            return true;
        } catch (const std::system_error&) {
            return false;
        }
    }

    int Status() {
        int status = -1;
        EXPECT_TRUE(child->Wait(60000, status));
        return status;
    }

    const TemporaryDirectory directory;
    std::unique_ptr<Child> child;
    int held[2] = {-1, -1};
};

TEST_F(Tftpserve, ThePortIsFreeAgainWhenItReturns) {
    const OneProcessor shared;
    for (unsigned int i = Scaled(100, 30); i > 0; --i) {
        SCOPED_TRACE(i);
        ASSERT_NO_FATAL_FAILURE(Start("", "exit 0"));
        siginfo_t ended;
        ASSERT_EQ(waitid(P_PID, static_cast<id_t>(child->Id()), &ended, WEXITED | WNOWAIT), 0);
        const bool isFree = IsPortFree();
        ASSERT_EQ(Status(), 0);
        ASSERT_TRUE(isFree);
        TearDown();
        SetUp();
    }
}

TEST_F(Tftpserve, ItsStatusIsTheCommands) {
    const auto status = [this](const char* script) {
        return RunProgram(Built(TFTPSERVE, {directory.Path(), "sh", "-c", script})).status;
    };
    EXPECT_EQ(status("exit 0"), 0);
    EXPECT_EQ(status("exit 7"), 7);
    EXPECT_EQ(status("kill -KILL $$"), 128 + SIGKILL);
    const Program::Result missing = RunProgram(Built(TFTPSERVE, {directory.Path(), "/nowhere"}));
    EXPECT_EQ(missing.status, 127);
    EXPECT_EQ(missing.errors, "tftpserve: /nowhere: No such file or directory\n");
}

TEST_F(Tftpserve, TheCommandIsServed) {
    WriteFile(directory.Path("motd"), "hello");
    Start();
    const UdpSocket client({Host(2), 0});
    client.Send({INADDR_LOOPBACK, 69}, Request("motd", "octet"));
    Octets answer;
    Endpoint sender;
    ASSERT_TRUE(client.Receive(answer, sender, 60000));
    EXPECT_EQ(answer, Data(1, "hello"));
}

TEST_F(Tftpserve, WithoutACommandItServesUntilItIsEnded) {
    WriteFile(directory.Path("motd"), "hello");
    child.reset(new Child([this] {
        dup2(held[1], STDOUT_FILENO);
        Become(Built(TFTPSERVE, {directory.Path()}));
    }));
    close(held[1]);
    held[1] = -1;
    const std::string serving = "serving " + directory.Path() + " at 127.0.0.1:69\n";
    ASSERT_EQ(Told(serving.size()), serving);
    for (int i = 0; i < 2; ++i) {
        const UdpSocket client({Host(2), 0});
        client.Send({INADDR_LOOPBACK, 69}, Request("motd", "octet"));
        Octets answer;
        Endpoint sender;
        ASSERT_TRUE(client.Receive(answer, sender, 60000));
        EXPECT_EQ(answer, Data(1, "hello"));
    }
    kill(child->Id(), SIGTERM);
    EXPECT_EQ(WTERMSIG(Status()), SIGTERM);
    EXPECT_EQ(Told(1), "");
}

TEST_F(Tftpserve, APortThatIsTakenIsAnErrorButNotInANetworkOfItsOwn) {
    const UdpSocket taken({INADDR_LOOPBACK, 69});
    const Program::Result here = Run({directory.Path(), "true"});
    EXPECT_EQ(here.status, 1);
    EXPECT_EQ(here.errors, "tftpserve: 127.0.0.1:69: Address already in use\n");
    WriteFile(directory.Path("motd"), "hello");
    std::vector<std::string> words = {"-n", directory.Path()};
    for (const std::string& word : Built(TQFETCH, {"-q", "-o", "-", "127.0.0.1", "motd"})) {
        words.push_back(word);
    }
    const Program::Result elsewhere = Run(words);
    EXPECT_EQ(elsewhere.output, "hello");
    EXPECT_EQ(elsewhere.errors, "");
    EXPECT_EQ(elsewhere.status, 0);
}

#ifndef TQ_EMULATED  // which has the system's calls by other numbers

// From here on the call fails for this process, and for the program that it becomes.
void Refuse(unsigned int call, unsigned int error) {
    sock_filter steps[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog filter = {4, steps};
    prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter);
}

TEST_F(Tftpserve, ANetworkOfItsOwnThatCannotBeHadIsAnError) {
    const std::vector<std::string> words = {"-n", directory.Path(), "true"};
    const Program::Result none = Run(words, [] { Refuse(SYS_unshare, EPERM); });
    EXPECT_EQ(none.errors, "tftpserve: no network namespace of its own: Operation not permitted\n");
    EXPECT_EQ(none.status, 1);
    const Program::Result down = Run(words, [] { Refuse(SYS_ioctl, EPERM); });
    EXPECT_EQ(down.errors, "tftpserve: no loopback interface: Operation not permitted\n");
    EXPECT_EQ(down.status, 1);
    const Program::Result unknown = Run(words, [] {
        Refuse(SYS_socket, EMFILE);
#ifdef SYS_socketcall  // by which some 32-bit C libraries make all calls of sockets
        Refuse(SYS_socketcall, EMFILE);
#endif
    });
    EXPECT_EQ(unknown.errors, "tftpserve: no loopback interface: Too many open files\n");
    EXPECT_EQ(unknown.status, 1);
}

#ifndef TQ_ADDRESS_SANITIZED  // which wants a process to look for leaks
TEST_F(Tftpserve, ACommandThatNoProcessIsThereForCannotBeStarted) {
    const Program::Result result =
        Run({directory.Path(), "true"}, [] { Refuse(SYS_clone, EAGAIN); });
    EXPECT_EQ(result.errors, "tftpserve: Resource temporarily unavailable\n");
    EXPECT_EQ(result.status, 127);
}
#endif

#endif

TEST_F(Tftpserve, NoStandardInputIsNeeded) {
    const Program::Result result =
        Run({"-n", directory.Path(), "true"}, [] { close(STDIN_FILENO); });
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(result.status, 0);
}

TEST_F(Tftpserve, TheCommandInheritsNoSocket) {
    const Program::Result result = Run({directory.Path(), "ls", "-l", "/proc/self/fd"});
    EXPECT_NE(result.output.find("pipe:"), std::string::npos);
    EXPECT_EQ(result.output.find("socket:"), std::string::npos) << result.output;
}

TEST_F(Tftpserve, ASignalIsTheCommandsToEndBy) {
    Start("trap 'sleep 0.1; echo ended >&9; exit' TERM; ", "while :; do sleep 0.05; done");
    kill(child->Id(), SIGTERM);
    EXPECT_EQ(Told(6), "ended\n");
    EXPECT_EQ(WTERMSIG(Status()), SIGTERM);
}

#ifndef TQ_EMULATED  // which hands on to a command only what the program itself ignores
TEST_F(Tftpserve, ASignalThatIsIgnoredEndsNeitherItNorTheCommand) {
    signal(SIGHUP, SIG_IGN);
    Start("kill -HUP $$; ", "kill -HUP $PPID; exit 7");
    signal(SIGHUP, SIG_DFL);
    const int status = Status();
    EXPECT_TRUE(WIFEXITED(status)) << status;
    EXPECT_EQ(WEXITSTATUS(status), 7);
}
#endif

TEST_F(Tftpserve, SignalsEndTheCommandFirst) {
    for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
        SCOPED_TRACE(number);
        ASSERT_NO_FATAL_FAILURE(Start());
        kill(child->Id(), number);
        const int status = Status();
        EXPECT_TRUE(IsCommandGone(0));
        EXPECT_TRUE(IsPortFree());
        EXPECT_TRUE(WIFSIGNALED(status)) << status;
        EXPECT_EQ(WTERMSIG(status), number);
        TearDown();
        SetUp();
    }
}

TEST_F(Tftpserve, ACommandThatDoesNotEndIsKilledAndNoOther) {
    Child other([this] { Become(Built(TFTPSERVE, {"-n", directory.Path(), "sleep", "600"})); });
    Start("trap '' TERM; ");
    kill(child->Id(), SIGTERM);
    const int status = Status();
    int statusOfOther = 0;
    EXPECT_FALSE(other.Wait(0, statusOfOther)) << statusOfOther;
    EXPECT_TRUE(IsCommandGone(0));
    EXPECT_TRUE(IsPortFree());
    EXPECT_EQ(WTERMSIG(status), SIGTERM);
}

TEST_F(Tftpserve, TheCommandDiesWithAServerThatIsKilled) {
    Start();
    kill(child->Id(), SIGKILL);
    EXPECT_EQ(WTERMSIG(Status()), SIGKILL);
    EXPECT_TRUE(IsCommandGone(60000));
}

#endif

}  // namespace
