// The example's server: what it answers, and the program around it.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/capability.h>
#include <poll.h>
#include <sched.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "Child.h"
#include "Files.h"
#include "Program.h"
#include "Scale.h"
#include "TftpHost.h"
#include "TftpScript.h"
#include "TftpServer.h"

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

    // What the server sends to a client of its own, at once or never; from where is in `sender`.
    static Octets Answer(TftpServer& server, const UdpSocket& client, const Endpoint& to,
                         const Octets& packet) {
        client.Send(to, packet);
        server.Serve(1000);
        Octets answer;
        if (!client.Receive(answer, sender, 0)) return "nothing";
        return answer;
    }

    Octets AnswerTo(const std::string& name) const {
        TftpServer server(UdpSocket(RequestPort()), served);
        return Answer(server, UdpSocket({Host(2), 0}), RequestPort(), Request(name, "octet"));
    }

    const TemporaryDirectory directory;
    TftpServer::Settings served;
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
    Child child([this] {
        UdpSocket listener(RequestPort());
        DropCapabilities();
        TftpServer server(std::move(listener), served);
        const UdpSocket client({Host(2), 0});
        const Octets answer = Answer(server, client, RequestPort(), Request("file", "octet"));
        _exit(answer == Error(2, "May not be read") ? 0 : 1);
    });
    int status = -1;
    ASSERT_TRUE(child.Wait(60000, status));
    EXPECT_EQ(status, 0);
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

TEST(TftpserveUsage, HelpIsNoError) {
    const Program::Result result = RunProgram(Built(TFTPSERVE, {"--help"}));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output.substr(0, 30), "usage: tftpserve [-n] DIRECTOR");
    EXPECT_EQ(result.errors, "");
}

TEST(TftpserveUsage, AWrongCommandLineHasStatus2) {
    for (const std::vector<std::string>& words :
         std::vector<std::vector<std::string>>{{}, {"-n"}, {"-x", "."}, {"-n", "-x"}}) {
        const Program::Result result = RunProgram(Built(TFTPSERVE, words));
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.output, "");
        EXPECT_EQ(result.errors.substr(0, 17), "usage: tftpserve ");
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
            std::vector<char*> arguments;
            for (const std::string& word : words) arguments.push_back(strdup(word.c_str()));
            arguments.push_back(nullptr);
            const rlimit noCore = {0, 0};
            setrlimit(RLIMIT_CORE, &noCore);
            dup2(held[1], 9);
            execvp(arguments[0], arguments.data());
            _exit(127);
        }));
        close(held[1]);
        held[1] = -1;
        char text[9] = {};
        ASSERT_EQ(read(held[0], text, 8), 8);
        ASSERT_STREQ(text, "started\n");
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

TEST_F(Tftpserve, ACommandThatDoesNotEndIsKilled) {
    Start("trap '' TERM; ");
    kill(child->Id(), SIGTERM);
    const int status = Status();
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
