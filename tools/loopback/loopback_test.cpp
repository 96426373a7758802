// What tools and tests share of sockets, and the network of their own.

#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <functional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "Child.h"
#include "Files.h"
#include "OwnNetwork.h"
#include "SystemCalls.h"
#include "TftpHost.h"
#include "TftpTest.h"
#include "UdpSocket.h"

namespace {

TEST(Endpoint, IsTheSameWhereHostAndPortAre) {
    const Endpoint one = {1, 2};
    EXPECT_TRUE(one == (Endpoint{1, 2}));
    EXPECT_FALSE(one != (Endpoint{1, 2}));
    for (const Endpoint& other : {Endpoint{1, 3}, Endpoint{2, 2}, Endpoint{2, 1}}) {
        EXPECT_FALSE(one == other);
        EXPECT_TRUE(one != other);
    }
}

TEST(Endpoint, IsInOrderByHostThenPort) {
    EXPECT_TRUE((Endpoint{1, 3} < Endpoint{2, 2}));
    EXPECT_TRUE((Endpoint{1, 2} < Endpoint{1, 3}));
    EXPECT_FALSE((Endpoint{1, 2} < Endpoint{1, 2}));
    EXPECT_FALSE((Endpoint{2, 2} < Endpoint{1, 3}));
}

TEST(Endpoint, IsShownAsPeopleWriteIt) {
    EXPECT_EQ(ToText({INADDR_LOOPBACK, 69}), "127.0.0.1:69");
    EXPECT_EQ(ToText({0xFFFEFDFC, 65535}), "255.254.253.252:65535");
}

class UdpSocketTest : public testing::Test {
protected:
    void SetUp() override {
        if (!TftpNetworkProblem().empty()) GTEST_SKIP() << TftpNetworkProblem();
    }

    void TearDown() override { systemCalls = SystemCalls(); }

    // What the system says when it refuses a socket there.
    static std::string ProblemAt(const Endpoint& at) {
        try {
            const UdpSocket socket(at);
            return "none";
        } catch (const std::system_error& problem) {
            return problem.what();
        }
    }

    Octets datagram = "before";
    Endpoint sender = {0, 0};
};

TEST_F(UdpSocketTest, TakesWhatIsSentToItAndTellsFromWhere) {
    const UdpSocket one({Host(1), 0});
    const UdpSocket other({Host(2), 0});
    for (const Octets& sent : {Octets("hello"), Octets(), Octets(65507, 'x')}) {
        one.Send(other.At(), sent);
        ASSERT_TRUE(other.Receive(datagram, sender, 60000));
        EXPECT_EQ(datagram, sent);
        EXPECT_EQ(ToText(sender), ToText(one.At()));
    }
}

TEST_F(UdpSocketTest, WaitsForADatagramForAsLongAsTold) {
    const UdpSocket socket({Host(1), 0});
    const long long start = Now();
    EXPECT_FALSE(socket.Receive(datagram, sender, 20));
    EXPECT_GE(Now() - start, 20);
    EXPECT_EQ(datagram, "before");
}

// Interrupts what waits every few milliseconds.
class Interruptions {
public:
    Interruptions() {
        struct sigaction action = {};
        action.sa_handler = [](int) {};
        sigaction(SIGALRM, &action, nullptr);
        SetTimer(5000);
    }
    Interruptions(const Interruptions&) = delete;
    Interruptions& operator=(const Interruptions&) = delete;
    ~Interruptions() {
        SetTimer(0);
        signal(SIGALRM, SIG_DFL);
    }

private:
    static void SetTimer(suseconds_t microseconds) {
        itimerval timer = itimerval();
        timer.it_interval.tv_usec = timer.it_value.tv_usec = microseconds;
        setitimer(ITIMER_REAL, &timer, nullptr);
    }
};

TEST_F(UdpSocketTest, WaitsOnAfterASignal) {
    const Interruptions interruptions;
    const UdpSocket socket({Host(1), 0});
    const long long start = Now();
    EXPECT_FALSE(socket.Receive(datagram, sender, 40));
    EXPECT_GE(Now() - start, 40);
    EXPECT_LT(Now() - start, 30000);
}

TEST_F(UdpSocketTest, WaitsNoMoreWhereASignalEndsTheWaitTooLate) {
    const Interruptions interruptions;
    const UdpSocket socket({Host(1), 0});
    timespec now = {1000, 0};
    systemCalls.clock_gettime = [&now] {
        now.tv_sec += 100;
        return now;
    };
    EXPECT_FALSE(socket.Receive(datagram, sender, 50000));
}

TEST_F(UdpSocketTest, HasNothingWhereTheDatagramIsGoneWhenItLooks) {
    const UdpSocket socket({Host(1), 0});
    socket.Send(socket.At(), "damaged");
    systemCalls.recvfrom = [](int, void*, std::size_t, int, sockaddr*, socklen_t*) -> ssize_t {
        errno = EAGAIN;
        return -1;
    };
    EXPECT_FALSE(socket.Receive(datagram, sender, 60000));
}

TEST_F(UdpSocketTest, IsAnErrorThatNamesTheAddressWhereItIsTaken) {
    const UdpSocket taken({Host(1), 0});
    const std::vector<int> before = TftpTest::Descriptors();
    EXPECT_EQ(ProblemAt(taken.At()), ToText(taken.At()) + ": Address already in use");
    EXPECT_EQ(TftpTest::Descriptors(), before);
}

TEST_F(UdpSocketTest, IsAnErrorWhereNothingCanBeOpened) {
    rlimit limit;
    getrlimit(RLIMIT_NOFILE, &limit);
    const rlimit none = {0, limit.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    const std::string problem = ProblemAt({Host(1), 0});
    setrlimit(RLIMIT_NOFILE, &limit);
    EXPECT_EQ(problem, ToText({Host(1), 0}) + ": Too many open files");
}

TEST_F(UdpSocketTest, IsClosedOnceWhenItWasMoved) {
    const std::vector<int> before = TftpTest::Descriptors();
    {
        UdpSocket first({Host(1), 0});
        const Endpoint at = first.At();
        const UdpSocket second(std::move(first));
        EXPECT_EQ(ToText(second.At()), ToText(at));
        EXPECT_NE(TftpTest::Descriptors(), before);
    }
    EXPECT_EQ(TftpTest::Descriptors(), before);
}

TEST_F(UdpSocketTest, LivesOnWhereTheOneItWasMovedFromGoes) {
    UdpSocket* first = new UdpSocket({Host(1), 0});
    const UdpSocket second(std::move(*first));
    delete first;
    second.Send(second.At(), "hello");
    EXPECT_TRUE(second.Receive(datagram, sender, 60000));
}

// The names of the network, or of the users, that this process is in.
std::string NameOf(const char* file) {
    char name[64] = {};
    return readlink(file, name, sizeof name - 1) > 0 ? name : "unknown";
}

std::string Network() {
    return NameOf("/proc/self/ns/net");
}

std::string Users() {
    return NameOf("/proc/self/ns/user");
}

// Enters a network of its own, and says what is wrong with it.
std::string ProblemOfOwnNetwork() {
    const std::string before = Network();
    const std::vector<int> descriptors = TftpTest::Descriptors();
    const std::string problem = EnterOwnNetwork();
    if (!problem.empty()) return problem;
    if (TftpTest::Descriptors() != descriptors) return "a descriptor is left";
    if (Network() == before) return "the network is still the same";
    const UdpSocket socket({INADDR_LOOPBACK, 69});
    socket.Send(socket.At(), "hello");
    Octets datagram;
    Endpoint sender;
    return socket.Receive(datagram, sender, 10000) ? "" : "loopback is down";
}

// Runs it in a process of its own, with what it returns as the status: 0 for nothing.
int StatusOf(const std::function<std::string()>& problem) {
    Child child([&] {
        const std::string text = problem();
        if (text.empty()) _exit(0);
        dprintf(STDERR_FILENO, "%s\n", text.c_str());
        _exit(1);
    });
    int status = -1;
    return child.Wait(60000, status) ? status : -1;
}

TEST(OwnNetwork, HasALoopbackInterfaceWithEveryPortFree) {
    if (!HasOwnNetwork()) GTEST_SKIP() << "this takes a network of its own";
    const UdpSocket taken({INADDR_LOOPBACK, 69});
    EXPECT_EQ(StatusOf(ProblemOfOwnNetwork), 0);
}

TEST(OwnNetwork, LeavesRootAmongTheSameUsers) {
    if (!HasOwnNetwork()) GTEST_SKIP() << "this takes a network of its own";
    EXPECT_EQ(StatusOf([] {
                  const std::string before = Users();
                  const std::string problem = EnterOwnNetwork();
                  return Users() == before ? problem : "other users";
              }),
              0);
}

#ifndef TQ_EMULATED  // which has threads of its own

const unsigned int nobody = 65534;

// A process of its own that is not root any more; what may be done is up to the kernel.
class OwnNetworkOfNobody : public testing::Test {
protected:
    void SetUp() override {
        const auto problem = [] {
            return BecomeNobody() && unshare(CLONE_NEWUSER) == 0 ? "" : "no user namespace";
        };
        if (StatusOf(problem) != 0) GTEST_SKIP() << "no user namespaces for others than root";
    }

    static bool BecomeNobody() { return setgid(nobody) == 0 && setuid(nobody) == 0; }
};

TEST_F(OwnNetworkOfNobody, IsAsGoodAsRoots) {
    EXPECT_EQ(StatusOf([] {
                  BecomeNobody();
                  prctl(PR_SET_DUMPABLE, 1, 0, 0, 0);  // else its files in /proc are root's
                  const std::string problem = ProblemOfOwnNetwork();
                  if (!problem.empty()) return problem;
                  return std::string(geteuid() == 0 && getegid() == 0 ? "" : "not root in there");
              }),
              0);
}

TEST_F(OwnNetworkOfNobody, SaysWhyItIsNotPossible) {
    EXPECT_EQ(StatusOf([] {
                  BecomeNobody();
                  const std::string problem = EnterOwnNetwork();
                  const bool isRight =
                      problem == "no network namespace of its own: Permission denied";
                  return isRight ? std::string() : "it says: " + problem;
              }),
              0);
}

#endif

}  // namespace
