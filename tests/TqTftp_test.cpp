#include "TqTftp.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <vector>

#include "Child.h"
#include "Scale.h"
#include "SystemCalls.h"
#include "TftpScript.h"
#include "TftpTest.h"

namespace {

// The client before its first transfer: what only a process can show that has not used it yet.

bool IsOpen(int descriptor) {
    return fcntl(descriptor, F_GETFD) != -1;
}

// The bodies run in children, which find the client untouched as long as this process does not use
// it itself.
class TqTftpClosed : public TftpTest {
protected:
    void SetUp() override {
        if (IsClientUsed()) GTEST_SKIP() << "a test before has used the client in this process";
    }
    void TearDown() override {}
};

#define EXPECT_IN_CHILD(condition) \
    EXPECT_EXIT(alarm(60); _exit((condition) ? 0 : 1), testing::ExitedWithCode(0), "")

TEST_F(TqTftpClosed, EndOfFileIsZeroBeforeTheFirstTransfer) {
    EXPECT_EQ(TFTP_eof(), 0u);
}

TEST_F(TqTftpClosed, TheDescriptorIsZeroBeforeTheFirstTransfer) {
    ASSERT_TRUE(IsOpen(0));
    EXPECT_IN_CHILD(TFTP_close() == 0 && !IsOpen(0) && TFTP_eof() == 1);
    EXPECT_IN_CHILD(TFTP_close() == 0 && TFTP_close() == 0x704 && TFTP_close() == 0x704);
}

TEST_F(TqTftpClosed, ClosingReturnsTheResultOfClose) {
    EXPECT_IN_CHILD(close(0) == 0 && TFTP_close() == 0xFFFFFFFFu && TFTP_close() == 0x704);
}

bool ReadFailsAndCloses() {
    unsigned int length = 0;
    return TFTP_read(&length) == nullptr && length == 0x814 && TFTP_close() == 0x704 &&
           TFTP_eof() == 1;
}

TEST_F(TqTftpClosed, AReadBeforeTheFirstTransferFailsAndClosesDescriptorZero) {
    EXPECT_IN_CHILD(open("/dev/null", O_RDONLY) >= 0 && ReadFailsAndCloses() && !IsOpen(0));
    EXPECT_IN_CHILD(close(0) == 0 && ReadFailsAndCloses());
}

// Transfers.

static_assert(offsetof(TFTP_OPEN_STRUCT, serverAddress) == 0, "");
static_assert(offsetof(TFTP_OPEN_STRUCT, fileName) == sizeof(char*), "");
static_assert(offsetof(TFTP_OPEN_STRUCT, mode) == 2 * sizeof(char*), "");
static_assert(sizeof(TFTP_OPEN_STRUCT) == 3 * sizeof(char*), "");

using Steps = std::vector<Step>;

// The server's host at the port of its transfer or another one, and another host.
Endpoint Server(std::uint16_t port = 2000) {
    return {Host(1), port};
}

Endpoint Stranger(std::uint16_t port = 2000) {
    return {Host(2), port};
}

Steps operator+(Steps steps, const Steps& more) {
    steps.insert(steps.end(), more.begin(), more.end());
    return steps;
}

// A transfer that waits for block 1.
Steps Opened() {
    return {Opens("f", "octet"), Arrives(RequestPort(), Request("f", "octet"))};
}

// A transfer that has accepted so many full blocks from Server().
Steps Accepted(unsigned int blocks) {
    Steps steps = Opened();
    for (unsigned int block = 1; block <= blocks; ++block) {
        steps.push_back(Sends(Server(), Data(block, Block(block))));
        steps.push_back(Reads(Block(block)));
        steps.push_back(Arrives(Server(), Acknowledgement(block)));
    }
    return steps;
}

// What a violation by this peer leads to.
Steps EndsAsViolation(const Endpoint& peer) {
    return {Fails(0x814), Arrives(peer, IllegalOperation()), EndOfFile(1), Closes(0x704)};
}

TFTP_OPEN_STRUCT RequestOf(const char* name, const char* mode) {
    return {htonl(Host(1)), name, mode};
}

// Opens a transfer from this server. Returns the client's address.
Endpoint OpenedFor(const UdpSocket& server) {
    TFTP_OPEN_STRUCT request = RequestOf("f", "octet");
    EXPECT_EQ(TFTP_open(&request), 0u);
    Octets datagram;
    Endpoint client;
    EXPECT_TRUE(server.Receive(datagram, client, 20000));
    return client;
}

class TqTftp : public TftpTest {
protected:
    // There is exactly one descriptor more than before; it goes.
    static void CloseTheOneBeyond(const std::vector<int>& before) {
        const std::vector<int> after = Descriptors();
        ASSERT_EQ(after.size(), before.size() + 1);
        for (const int descriptor : after) {
            if (std::count(before.begin(), before.end(), descriptor) == 0) close(descriptor);
        }
        EXPECT_EQ(Descriptors(), before);
    }
};

// Error packets.

Octets Packet(const unsigned char (&bytes)[34]) {
    return Octets(reinterpret_cast<const char*>(bytes), sizeof bytes);
}

Octets Padded(unsigned char code, const std::string& text) {
    Octets packet = {0, 5, 0, static_cast<char>(code)};
    packet += text;
    packet.resize(34, '\0');
    return packet;
}

TEST(TqTftpErrors, AreTheirCodeAndTextPaddedTo34Bytes) {
    EXPECT_EQ(Packet(_tftp_error_exists), Padded(6, "File Already Exists"));
    EXPECT_EQ(Packet(_tftp_error_nofile), Padded(1, "File Not Found"));
    EXPECT_EQ(Packet(_tftp_error_to), Padded(0, "Excessive Retransmissions"));
    EXPECT_EQ(Packet(_tftp_error_busy), Padded(0, "TFTP Server Busy"));
    EXPECT_EQ(Packet(_tftp_error_srv), Padded(0, "TFTP Server Failure"));
    EXPECT_EQ(Packet(_tftp_error_accvio), Padded(2, "Access Violation"));
    EXPECT_EQ(Packet(_tftp_error_op), Padded(4, "Illegal Operation"));
    EXPECT_EQ(Packet(_tftp_error_tid), Padded(5, "Invalid TID"));
}

TEST(TqTftpErrors, ResultCodesHaveTheirNumbers) {
    EXPECT_EQ(TFTP_NOT_OPEN, 0x704u);
    EXPECT_EQ(TFTP_NO_SOCKET, 0x800u);
    EXPECT_EQ(TFTP_NO_MEMORY, 0x802u);
    EXPECT_EQ(TFTP_NOT_SENT, 0x803u);
    EXPECT_EQ(TFTP_SERVER_ERROR, 0x810u);
    EXPECT_EQ(TFTP_VIOLATION, 0x814u);
}

// TFTP_open.

TEST_F(TqTftp, OpenSendsTheReadRequestToPort69) {
    const Octets expected("\0\1motd\0octet\0", 13);
    Play({Opens("motd", "octet"), Arrives({Host(1), 69}, expected), EndOfFile(0), Closes(0)});
}

TEST_F(TqTftp, NameAndModeAreSentUnchanged) {
    for (const char* name : {"", "/etc/motd", "a b\xFF\x01%s", "..\\x"}) {
        for (const char* mode : {"", "netascii", "OcTeT", "mail", "no such mode"}) {
            Play({Opens(name, mode), Arrives(RequestPort(), Request(name, mode)), Closes(0)});
        }
    }
}

TEST_F(TqTftp, TheRequestTakesBothTextsWithTheirNulsAndTwoBytes) {
    const std::string name(1000, 'n');
    const std::string mode(229, 'm');
    const Octets request = Octets("\0\1", 2) + name + '\0' + mode + '\0';
    ASSERT_EQ(request.size(), name.size() + mode.size() + 4);
    WatchMemory(request.size());
    Play({Opens(name, mode), Arrives(RequestPort(), request)});
    if (heapIsWatched) {
        EXPECT_EQ(WatchedBlocks(), 1);
    }
}

TEST_F(TqTftp, TheSocketIsAnIpv4DatagramSocketAtAnyAddressAndPort) {
    std::vector<sockaddr_in> bound;
    systemCalls.bind = [&bound](int descriptor, const sockaddr* address, socklen_t length) {
        EXPECT_EQ(length, sizeof(sockaddr_in));
        bound.push_back(*reinterpret_cast<const sockaddr_in*>(address));
        return bind(descriptor, address, length);
    };
    const int descriptor = NextDescriptor();
    TFTP_OPEN_STRUCT request = RequestOf("f", "octet");
    ASSERT_EQ(TFTP_open(&request), 0u);
    ASSERT_EQ(bound.size(), 1u);
    EXPECT_EQ(bound[0].sin_family, AF_INET);
    EXPECT_EQ(bound[0].sin_port, 0);
    EXPECT_EQ(bound[0].sin_addr.s_addr, 0u);
    int value = 0;
    socklen_t size = sizeof value;
    EXPECT_EQ(getsockopt(descriptor, SOL_SOCKET, SO_DOMAIN, &value, &size), 0);
    EXPECT_EQ(value, AF_INET);
    EXPECT_EQ(getsockopt(descriptor, SOL_SOCKET, SO_TYPE, &value, &size), 0);
    EXPECT_EQ(value, SOCK_DGRAM);
    EXPECT_EQ(getsockopt(descriptor, SOL_SOCKET, SO_PROTOCOL, &value, &size), 0);
    EXPECT_EQ(value, IPPROTO_UDP);
    EXPECT_EQ(fcntl(descriptor, F_GETFL) & O_NONBLOCK, 0);
}

// Every descriptor below the limit taken, as long as the object lives.
class TakenDescriptors {
public:
    explicit TakenDescriptors(rlim_t limit) {
        getrlimit(RLIMIT_NOFILE, &before);
        const rlimit wanted = {limit, before.rlim_max};
        isPossible = setrlimit(RLIMIT_NOFILE, &wanted) == 0;
    }
    ~TakenDescriptors() {
        for (int descriptor : taken) close(descriptor);
        setrlimit(RLIMIT_NOFILE, &before);
    }

    bool TakeAllBelow(int limit) {
        while (isPossible) {
            const int descriptor = open("/dev/null", O_RDONLY);
            if (descriptor >= 0) taken.push_back(descriptor);
            if (descriptor < 0 || descriptor >= limit - 1) break;
        }
        return !taken.empty() && taken.back() == limit - 1;
    }

private:
    rlimit before = rlimit();
    bool isPossible = false;
    std::vector<int> taken;
};

TEST_F(TqTftp, OpenWithoutASocketFailsWith0x800) {
    TFTP_OPEN_STRUCT request = RequestOf("f", "octet");
    {
        const TakenDescriptors none(static_cast<rlim_t>(NextDescriptor()));
        EXPECT_EQ(TFTP_open(&request), 0x800u);
    }
    EXPECT_EQ(TFTP_eof(), 1u);
    EXPECT_EQ(TFTP_close(), 0x704u);
}

TEST_F(TqTftp, ADescriptorThatSelectCannotHoldIsClosedAgain) {
    TakenDescriptors taken(FD_SETSIZE + 64);
    if (!taken.TakeAllBelow(FD_SETSIZE)) GTEST_SKIP() << "no descriptors beyond FD_SETSIZE here";
    TFTP_OPEN_STRUCT request = RequestOf("f", "octet");
    EXPECT_EQ(TFTP_open(&request), 0x800u);
    EXPECT_EQ(NextDescriptor(), FD_SETSIZE);
    EXPECT_EQ(TFTP_close(), 0x704u);
}

TEST_F(TqTftp, TheLastDescriptorThatSelectHoldsServes) {
    TakenDescriptors taken(FD_SETSIZE + 64);
    if (!taken.TakeAllBelow(FD_SETSIZE - 1))
        GTEST_SKIP() << "no descriptors beyond FD_SETSIZE here";
    TFTP_OPEN_STRUCT request = RequestOf("f", "octet");
    EXPECT_EQ(TFTP_open(&request), 0u);
    EXPECT_TRUE(IsOpen(FD_SETSIZE - 1));
    systemCalls.select = [](int count, fd_set* readable, timeval*) {
        EXPECT_EQ(count, FD_SETSIZE);
        EXPECT_TRUE(FD_ISSET(FD_SETSIZE - 1, readable));
        return 0;
    };
    systemCalls.recvfrom = [](int, void*, std::size_t, int, sockaddr*, socklen_t*) {
        errno = EIO;
        return ssize_t(-1);
    };
    unsigned int length = 0;
    testing::internal::CaptureStdout();
    EXPECT_EQ(TFTP_read(&length), nullptr);
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(length, 0x814u);
    EXPECT_FALSE(IsOpen(FD_SETSIZE - 1));
}

TEST_F(TqTftp, AnOpenThatGetsNoSocketLeavesTheTransferBeforeAsItWas) {
    WatchMemory(sizeof "f" + sizeof "octet" + 2);
    Play(Opened());
    {
        TFTP_OPEN_STRUCT request = RequestOf("f", "octet");
        const TakenDescriptors none(static_cast<rlim_t>(NextDescriptor()));
        EXPECT_EQ(TFTP_open(&request), 0x800u);
    }
    if (heapIsWatched) {
        EXPECT_EQ(WatchedBlocks(), 1);
    }
    EXPECT_EQ(TFTP_eof(), 0u);
    EXPECT_EQ(TFTP_close(), 0u);
}

TEST_F(TqTftp, OpenReturnsTheResultOfAFailedBindAndCloses) {
    for (const int result : {-1, 7}) {
        systemCalls.bind = [result](int, const sockaddr*, socklen_t) { return result; };
        const int descriptor = NextDescriptor();
        TFTP_OPEN_STRUCT request = RequestOf("f", "octet");
        EXPECT_EQ(TFTP_open(&request), static_cast<unsigned int>(result));
        EXPECT_FALSE(IsOpen(descriptor));
        EXPECT_EQ(TFTP_eof(), 1u);
        EXPECT_EQ(TFTP_close(), 0x704u);
    }
}

TEST_F(TqTftp, OpenWithoutMemoryFailsWith0x802AndCloses) {
    if (!heapIsWatched) GTEST_SKIP() << "the sanitizer brings its own heap";
    const std::string name(1500, 'n');
    RefuseMemory(name.size() + std::strlen("octet") + 4);
    const int descriptor = NextDescriptor();
    systemCalls.sendto = [](int, const void*, std::size_t, int, const sockaddr*, socklen_t) {
        ADD_FAILURE() << "nothing is to be sent";
        return ssize_t(-1);
    };
    TFTP_OPEN_STRUCT request = RequestOf(name.c_str(), "octet");
    EXPECT_EQ(TFTP_open(&request), 0x802u);
    EXPECT_FALSE(IsOpen(descriptor));
    EXPECT_EQ(TFTP_eof(), 1u);
    EXPECT_EQ(TFTP_close(), 0x704u);
}

TEST_F(TqTftp, ARequestThatIsNotSentWholeFailsWith0x803AndIsReleasedOnce) {
    const std::string name(1600, 'n');
    const std::size_t whole = name.size() + std::strlen("octet") + 4;
    for (const ssize_t sent : {ssize_t(-1), ssize_t(0), static_cast<ssize_t>(whole - 1)}) {
        systemCalls.sendto = [sent](int, const void*, std::size_t, int, const sockaddr*,
                                    socklen_t) { return sent; };
        const int descriptor = NextDescriptor();
        WatchMemory(whole);
        TFTP_OPEN_STRUCT request = RequestOf(name.c_str(), "octet");
        EXPECT_EQ(TFTP_open(&request), 0x803u);
        EXPECT_EQ(WatchedBlocks(), 0);
        EXPECT_FALSE(IsOpen(descriptor));
        EXPECT_EQ(TFTP_eof(), 1u);
        EXPECT_EQ(TFTP_close(), 0x704u);
    }
}

TEST_F(TqTftp, ARequestTooLongForADatagramFailsWith0x803) {
    const std::string name(70000, 'n');
    TFTP_OPEN_STRUCT request = RequestOf(name.c_str(), "octet");
    EXPECT_EQ(TFTP_open(&request), 0x803u);
    EXPECT_EQ(TFTP_close(), 0x704u);
}

TEST_F(TqTftp, TheAddressIsTakenAsItIs) {
    const Endpoint other = RequestPort(200);
    const UdpSocket peer(other);
    TFTP_OPEN_STRUCT request = {htonl(other.host), "f", "octet"};
    ASSERT_EQ(TFTP_open(&request), 0u);
    Octets datagram;
    Endpoint sender;
    ASSERT_TRUE(peer.Receive(datagram, sender, 20000));
    EXPECT_EQ(datagram, Request("f", "octet"));
}

TEST_F(TqTftp, ASecondOpenReleasesTheFirstRequestAndLeavesTheFirstDescriptor) {
    const std::vector<int> before = Descriptors();
    const std::string name(1700, 'n');
    WatchMemory(name.size() + std::strlen("octet") + 4);
    Play({Opens(name, "octet"), Arrives(RequestPort(), Request(name, "octet")),
          Opens(name, "octet"), Arrives(RequestPort(), Request(name, "octet")),
          Sends(Server(), Data(1, "x")), Reads("x"), Arrives(Server(), Acknowledgement(1)),
          Closes(0), Closes(0x704)});
    EXPECT_EQ(WatchedBlocks(), 0);
    CloseTheOneBeyond(before);
}

TEST_F(TqTftp, ASecondOpenForgetsHowFarTheFirstTransferWas) {
    const std::vector<int> before = Descriptors();
    Play(Accepted(3) + Steps{Opens("g", "octet"), Arrives(RequestPort(), Request("g", "octet")),
                             EndOfFile(0), Sends(Server(3000), Data(1, "x")), Reads("x"),
                             EndOfFile(1), Arrives(Server(3000), Acknowledgement(1)), Closes(0)});
    CloseTheOneBeyond(before);
}

TEST_F(TqTftp, OpenAfterCloseStartsWithTheFirstTimeoutAgain) {
    Play(Opened() + Steps{Passes(100000), Interrupts(), Sends(Server(), Data(1, "x")), Reads("x"),
                          Arrives(RequestPort(), Request("f", "octet")),
                          Arrives(Server(), Acknowledgement(1)), Waits({4, 8}), Closes(0)});
    Play(Opened() + Steps{Sends(Server(), Data(1, "x")), Reads("x"),
                          Arrives(Server(), Acknowledgement(1)), Waits({4}), Closes(0)});
}

// TFTP_read: the blocks of a file.

TEST_F(TqTftp, AShortBlockEndsTheFile) {
    Play(Opened() + Steps{EndOfFile(0), Sends(Server(), Data(1, "hello")), Reads("hello"),
                          EndOfFile(1), Arrives(Server(), Octets("\0\4\0\1", 4)), Closes(0),
                          EndOfFile(1), Closes(0x704)});
}

TEST_F(TqTftp, AnEmptyFileIsOneBlockOfNone) {
    Play(Opened() + Steps{Sends(Server(), Octets("\0\3\0\1", 4)), Reads(""), EndOfFile(1),
                          Arrives(Server(), Acknowledgement(1)), Closes(0)});
}

TEST_F(TqTftp, EveryLengthOfABlockIsReadAsItIs) {
    for (std::size_t length = 0; length <= 512; ++length) {
        Play(Opened() + Steps{Sends(Server(), Data(1, Block(9, length))), Reads(Block(9, length)),
                              EndOfFile(length < 512 ? 1 : 0),
                              Arrives(Server(), Acknowledgement(1)), Closes(0)});
    }
}

TEST_F(TqTftp, AFileOf512BytesEndsWithABlockOfNone) {
    Play(Accepted(1) + Steps{EndOfFile(0), Sends(Server(), Data(2, "")), Reads(""), EndOfFile(1),
                             Arrives(Server(), Acknowledgement(2)), Closes(0)});
}

TEST_F(TqTftp, BlocksAreAcknowledgedOneByOneAtTheTransferPort) {
    Play(Accepted(300) + Steps{EndOfFile(0), Sends(Server(), Data(301, "end")), Reads("end"),
                               Arrives(Server(), Acknowledgement(301)), EndOfFile(1), Closes(0)});
}

TEST_F(TqTftp, TheTransferPortMayBe69) {
    Play(Opened() + Steps{Sends(Server(69), Data(1, Block(1))), Reads(Block(1)),
                          Arrives(Server(69), Acknowledgement(1)), Sends(Server(), Data(2, "x")),
                          Sends(Server(69), Data(2, "y")), Reads("y"),
                          Arrives(Server(), InvalidTid()), Arrives(Server(69), Acknowledgement(2)),
                          Closes(0)});
}

TEST_F(TqTftp, TheDataLieInTheClientAndNotAtTheHeader) {
    const UdpSocket server(RequestPort());
    const Endpoint client = OpenedFor(server);
    server.Send(client, Data(1, Block(1)));
    server.Send(client, Data(2, "x"));
    unsigned int length = 0;
    const unsigned char* first = TFTP_read(&length);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(length, 512u);
    EXPECT_EQ(Octets(reinterpret_cast<const char*>(first), length), Block(1));
    EXPECT_EQ(TFTP_read(&length), first);
    EXPECT_EQ(length, 1u);
    EXPECT_EQ(*first, 'x');
}

TEST_F(TqTftp, TheFirstBlockReleasesTheRequest) {
    const std::string name(1800, 'n');
    WatchMemory(name.size() + std::strlen("octet") + 4);
    Play({Opens(name, "octet"), Arrives(RequestPort(), Request(name, "octet"))});
    if (heapIsWatched) {
        EXPECT_EQ(WatchedBlocks(), 1);
    }
    systemCalls = SystemCalls();
    EXPECT_EQ(TFTP_close(), 0u);
    EXPECT_EQ(WatchedBlocks(), 0);
    Play({Opens(name, "octet"), Arrives(RequestPort(), Request(name, "octet")),
          Sends(Server(), Data(1, Block(1))), Reads(Block(1)),
          Arrives(Server(), Acknowledgement(1))});
    EXPECT_EQ(WatchedBlocks(), 0);
    EXPECT_EQ(TFTP_close(), 0u);
}

TEST_F(TqTftp, AReadAfterTheLastBlockStillAnswersRepeats) {
    Play(Opened() + Steps{Sends(Server(), Data(1, "x")), Reads("x"),
                          Arrives(Server(), Acknowledgement(1)), Sends(Server(), Data(1, "x")),
                          Sends(Server(), Error(0, "bye")), Fails(0x810),
                          Arrives(Server(), Acknowledgement(1)), Closes(0x704)});
}

// Repeats.

TEST_F(TqTftp, ARepeatOfTheLastBlockIsAcknowledgedAgainAndNotPassedOn) {
    Play(Accepted(2) +
         Steps{Sends(Server(), Data(2, Block(2))), Sends(Server(), Data(2, "other text")),
               Sends(Server(), Data(3, "new")), Reads("new"), Arrives(Server(), Acknowledgement(2)),
               Arrives(Server(), Acknowledgement(2)), Arrives(Server(), Acknowledgement(3)),
               EndOfFile(1), Closes(0)});
}

TEST_F(TqTftp, ARepeatDoesNotEndTheFile) {
    Play(Accepted(1) + Steps{Sends(Server(), Data(1, "short")), Sends(Server(), Data(2, Block(2))),
                             Reads(Block(2)), EndOfFile(0), Arrives(Server(), Acknowledgement(1)),
                             Arrives(Server(), Acknowledgement(2)), Closes(0)});
}

TEST_F(TqTftp, ABlockZeroBeforeTheFirstIsTakenAsARepeat) {
    // The acknowledgement of "the last block" goes to where the request went, and the request is
    // still held.
    Play(Opened() + Steps{Sends(Server(), Data(0, "zero")), Passes(4000), Interrupts(),
                          Sends(Server(3000), Data(1, "x")), Reads("x"),
                          Arrives(RequestPort(), Acknowledgement(0)),
                          Arrives(RequestPort(), Request("f", "octet")),
                          Arrives(Server(3000), Acknowledgement(1)), Closes(0)});
}

TEST_F(TqTftp, ARepeatBeginsAFullWait) {
    Play(Accepted(1) + Steps{Waits({4}), Passes(3000), Sends(Server(), Data(1, Block(1))),
                             Passes(3000), Sends(Server(), Data(2, "x")), Reads("x"), Waits({4, 4}),
                             Arrives(Server(), Acknowledgement(1)),
                             Arrives(Server(), Acknowledgement(2)), Closes(0)});
}

// Strangers.

TEST_F(TqTftp, AnyPortOfTheServerMaySendTheFirstBlock) {
    for (const std::uint16_t port : {std::uint16_t(1), std::uint16_t(69), std::uint16_t(65535)}) {
        Play(Opened() + Steps{Sends(Server(port), Data(1, Block(1))), Reads(Block(1)),
                              Arrives(Server(port), Acknowledgement(1)), Closes(0)});
    }
}

TEST_F(TqTftp, AnotherPortAfterTheFirstBlockIsToldOffAndTheTransferGoesOn) {
    const Octets invalidTid("\0\5\0\5Invalid TID\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0", 34);
    ASSERT_EQ(invalidTid, InvalidTid());
    Play(Accepted(1) + Steps{Sends(Server(3000), Data(2, "wrong")), Sends(Server(), Data(2, "ok")),
                             Reads("ok"), Arrives(Server(3000), invalidTid),
                             Arrives(Server(), Acknowledgement(2)), Closes(0)});
}

TEST_F(TqTftp, AnotherPortIsToldOffWhateverItSends) {
    const Octets datagrams[] = {Octets(),
                                "x",
                                Data(1, Block(1)),
                                Acknowledgement(1),
                                Error(1, "no"),
                                Octets(600, '\3'),
                                Request("f", "octet")};
    for (const Octets& datagram : datagrams) {
        Play(Accepted(1) + Steps{Sends(Server(3000), datagram), Sends(Server(), Data(2, "ok")),
                                 Reads("ok"), Arrives(Server(3000), InvalidTid()),
                                 Arrives(Server(), Acknowledgement(2)), Closes(0)});
    }
}

TEST_F(TqTftp, ThePortTheRequestWentToIsAStrangerToo) {
    Play(Accepted(1) + Steps{Sends(RequestPort(), Data(2, "wrong")), Sends(Server(), Data(2, "ok")),
                             Reads("ok"), Arrives(RequestPort(), InvalidTid()),
                             Arrives(Server(), Acknowledgement(2)), Closes(0)});
}

TEST_F(TqTftp, AnotherHostIsIgnoredSilentlyWhateverItSends) {
    const Octets datagrams[] = {Octets(),        "x",
                                Data(1, "evil"), Data(0, "evil"),
                                Data(2, "evil"), Acknowledgement(1),
                                Error(1, "no"),  Octets(600, '\3')};
    for (const Octets& datagram : datagrams) {
        for (const std::uint16_t port : {std::uint16_t(69), std::uint16_t(2000)}) {
            Play(Opened() + Steps{Sends(Stranger(port), datagram), Sends(Server(), Data(1, "ok")),
                                  Reads("ok"), Arrives(Server(), Acknowledgement(1)), Closes(0)});
            Play(Accepted(1) + Steps{Sends(Stranger(port), datagram),
                                     Sends(Server(), Data(2, "ok")), Reads("ok"),
                                     Arrives(Server(), Acknowledgement(2)), Closes(0)});
        }
    }
}

TEST_F(TqTftp, StrangersDoNotProlongTheWait) {
    Play(Accepted(1) +
         Steps{Waits({4}), Passes(1500), Sends(Stranger(), Data(2, "evil")), Passes(1500),
               Sends(Server(3000), Data(2, "evil")), Passes(1500), Interrupts(),
               Sends(Server(), Data(2, "ok")), Reads("ok"), Arrives(Server(3000), InvalidTid()),
               Arrives(Server(), Acknowledgement(1)), Arrives(Server(), Acknowledgement(2)),
               Waits({4, 2, 1, 8}), Closes(0)});
}

// Violations.

TEST_F(TqTftp, ADatagramShorterThanAHeaderIsAViolation) {
    const Octets header("\0\5\0\1", 4);
    for (std::size_t length = 0; length < 4; ++length) {
        for (const Octets& datagram : {header, Data(1, ""), Data(2, ""), Octets("abcd")}) {
            const Octets start = datagram.substr(0, length);
            Play(Opened() + Steps{Sends(Server(), start)} + EndsAsViolation(Server()));
            Play(Accepted(1) + Steps{Sends(Server(), start)} + EndsAsViolation(Server()));
        }
    }
}

TEST_F(TqTftp, TheIllegalOperationPacketIs34Bytes) {
    const Octets expected("\0\5\0\4Illegal Operation\0\0\0\0\0\0\0\0\0\0\0\0\0", 34);
    Play(Accepted(1) + Steps{Sends(Server(), "abc"), Fails(2068), Arrives(Server(), expected),
                             EndOfFile(1), Closes(1796)});
}

TEST_F(TqTftp, EveryOtherOpcodeIsAViolation) {
    for (const unsigned int opcode : {0x0000u, 0x0001u, 0x0002u, 0x0004u, 0x0006u, 0x0103u, 0x0105u,
                                      0x0300u, 0x0500u, 0x8003u, 0xFFFFu}) {
        Octets datagram = Data(2, "text");
        datagram[0] = static_cast<char>(opcode >> 8);
        datagram[1] = static_cast<char>(opcode & 0xFF);
        Play(Accepted(1) + Steps{Sends(Server(), datagram)} + EndsAsViolation(Server()));
    }
}

TEST_F(TqTftp, ABlockNumberBelowTheLastOrBeyondTheNextIsAViolation) {
    const unsigned int cases[][2] = {{0, 2},     {0, 0x0100}, {0, 0x8000}, {0, 0xFFFF},
                                     {1, 0},     {1, 3},      {1, 0xFFFF}, {1, 0x0102},
                                     {2, 1},     {2, 0},      {2, 4},      {2, 0x8002},
                                     {300, 299}, {300, 302},  {300, 44},   {300, 45}};
    for (const unsigned int* lastAndSent : cases) {
        Play(Accepted(lastAndSent[0]) + Steps{Sends(Server(), Data(lastAndSent[1], "text"))} +
             EndsAsViolation(Server()));
    }
}

TEST_F(TqTftp, ADatagramLongerThanABlockIsAViolation) {
    for (const std::size_t length : {513u, 514u, 600u, 1468u, 60000u}) {
        Play(Opened() + Steps{Sends(Server(), Data(1, Block(1, length)))} +
             EndsAsViolation(Server()));
        Play(Accepted(1) + Steps{Sends(Server(), Data(1, Block(1, length)))} +
             EndsAsViolation(Server()));
        Play(Accepted(1) + Steps{Sends(Server(), Data(2, Block(2, length)))} +
             EndsAsViolation(Server()));
    }
}

TEST_F(TqTftp, AViolationIsAnsweredWhereItCameFrom) {
    Play(Opened() + Steps{Sends(Server(3000), Acknowledgement(0))} + EndsAsViolation(Server(3000)));
}

TEST_F(TqTftp, BlockNumbersDoNotWrap) {
    if (IsOnDevice()) GTEST_SKIP() << "so many steps take 200 MB, more than the device has";
    const Steps all = Accepted(65535);
    Play(all + Steps{EndOfFile(0), Sends(Server(), Data(65535, "again")),
                     Sends(Server(), Data(0, "wrapped")), Fails(0x814),
                     Arrives(Server(), Acknowledgement(65535)),
                     Arrives(Server(), IllegalOperation()), Closes(0x704)});
}

// Error packets from the server.

TEST_F(TqTftp, AServersErrorIsReportedByItsCode) {
    for (const unsigned int code : {0u, 1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u, 0x100u, 0x1234u, 0xFFFFu}) {
        Play(Opened() + Steps{Sends(Server(), Error(code, "why")), Fails(0x810 + code),
                              EndOfFile(1), Closes(0x704)});
        Play(Accepted(2) + Steps{Sends(Server(), Error(code, "why")), Fails(0x810 + code),
                                 EndOfFile(1), Closes(0x704)});
    }
}

TEST_F(TqTftp, AMissingFileIs2065) {
    Play(Opened() + Steps{Sends(Server(), Error(1, "File not found")), Fails(2065)});
}

TEST_F(TqTftp, AnErrorPacketCountsWithoutATextAndWithAnyLength) {
    Play(Opened() + Steps{Sends(Server(), Octets("\0\5\0\2", 4)), Fails(0x812)});
    Play(Opened() + Steps{Sends(Server(), Error(2, std::string(511, 'x'))), Fails(0x812)});
    Play(Opened() + Steps{Sends(Server(), Error(2, std::string(512, 'x'))), Fails(0x812)});
    Play(Accepted(1) + Steps{Sends(Server(), Error(2, std::string(5000, 'x'))), Fails(0x812)});
}

Octets ErrorText() {
    unsigned int length = 12345;
    const unsigned char* const text = TFTP_error_text(&length);
    return Octets(reinterpret_cast<const char*>(text), length);
}

TEST_F(TqTftp, TheTextOfTheServersErrorIsThereAsItCame) {
    Play(Opened() + Steps{Sends(Server(), Error(1, "no such thing")), Fails(0x811), Closes(0x704)});
    EXPECT_EQ(ErrorText(), Octets("no such thing\0", 14));
    EXPECT_EQ(ErrorText(), Octets("no such thing\0", 14));
    Play(Accepted(1) + Steps{Sends(Server(), Octets("\0\5\0\2bare", 8)), Fails(0x812)});
    EXPECT_EQ(ErrorText(), "bare");
    Play(Opened() + Steps{Sends(Server(), Octets("\0\5\0\2", 4)), Fails(0x812)});
    EXPECT_EQ(ErrorText(), "");
    for (const std::size_t length : {511u, 512u, 513u, 5000u}) {
        const Octets text(length, 'x');
        Play(Opened() + Steps{Sends(Server(), Octets("\0\5\0\2", 4) + text), Fails(0x812)});
        EXPECT_EQ(ErrorText(), text.substr(0, 512)) << length;
    }
}

TEST_F(TqTftp, WithoutAServersErrorThereIsNoText) {
    Play(Opened() + Steps{Sends(Server(), Error(1, "no")), Fails(0x811)});
    Play(Opened() + Steps{Sends(Server(), Data(7, "what")), Fails(0x814),
                          Arrives(Server(), IllegalOperation())});
    EXPECT_EQ(ErrorText(), "");
    Play(Opened() + Steps{Sends(Server(), Error(1, "no")), Fails(0x811)});
    const std::string tooLong(70000, 'n');
    TFTP_OPEN_STRUCT request = RequestOf(tooLong.c_str(), "octet");
    EXPECT_EQ(TFTP_open(&request), 0x803u);
    EXPECT_EQ(ErrorText(), "");
}

TEST_F(TqTftp, AFailedReadReleasesTheSocketAndTheRequest) {
    const std::string name(1900, 'n');
    for (const Octets& datagram : {Error(1, "no"), Octets("abc")}) {
        WatchMemory(name.size() + std::strlen("octet") + 4);
        const UdpSocket server(RequestPort());
        const std::vector<int> before = Descriptors();
        TFTP_OPEN_STRUCT request = RequestOf(name.c_str(), "octet");
        ASSERT_EQ(TFTP_open(&request), 0u);
        Octets received;
        Endpoint client;
        ASSERT_TRUE(server.Receive(received, client, 20000));
        server.Send(client, datagram);
        unsigned int length = 0;
        EXPECT_EQ(TFTP_read(&length), nullptr);
        EXPECT_EQ(WatchedBlocks(), 0);
        EXPECT_EQ(Descriptors(), before);
        EXPECT_EQ(TFTP_close(), 0x704u);
    }
}

// Waiting.

TEST_F(TqTftp, SelectIsGivenTheWholeSecondsThatAreLeft) {
    Play(Accepted(1) + Steps{Waits({4}), Passes(1), Sends(Stranger(), "x"), Passes(999),
                             Sends(Stranger(), "x"), Passes(2000), Sends(Stranger(), "x"),
                             Passes(1), Sends(Stranger(), "x"), Passes(998), Sends(Stranger(), "x"),
                             Sends(Server(), Data(2, "x")), Reads("x"), Waits({4, 3, 3, 1, 0, 0}),
                             Arrives(Server(), Acknowledgement(2)), Closes(0)});
}

TEST_F(TqTftp, ATimeoutOfSelectIsPrintedAndTheReceiveBlocksAllTheSame) {
    // Nothing is sent again while the receive blocks, however long it takes.
    Play(Accepted(1) + Steps{Prints(""), Passes(1000000), Sends(Server(), Data(2, "late")),
                             Reads("late"), Prints("(TqTftp, 0): select() timeout  .\r\n"),
                             Waits({4, 4}), Arrives(Server(), Acknowledgement(2)), Closes(0)});
}

TEST_F(TqTftp, TheReceiveReallyBlocks) {
    const UdpSocket server(RequestPort());
    const Endpoint client = OpenedFor(server);
    const Child late([&] {
        usleep(300000);
        server.Send(client, Data(1, "late"));
    });
    systemCalls.select = [](int, fd_set*, timeval*) { return 0; };
    testing::internal::CaptureStdout();
    unsigned int length = 0;
    EXPECT_NE(TFTP_read(&length), nullptr);
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(length, 4u);
}

TEST_F(TqTftp, AFailureOfSelectIsPrintedAndTheReceiveBlocksAllTheSame) {
    Play(Accepted(1) + Steps{Passes(1000), SelectFails(EINTR), Passes(1000000),
                             Sends(Server(), Data(2, "late")), Reads("late"),
                             Prints("(TqTftp, 0): select() failed (4) .\r\n"), Waits({4, 4}),
                             Arrives(Server(), Acknowledgement(2)), Closes(0)});
    Play(Accepted(1) + Steps{SelectFails(EBADF), Sends(Server(), Data(2, "x")), Reads("x"),
                             Prints("(TqTftp, 0): select() failed (9) .\r\n"),
                             Arrives(Server(), Acknowledgement(2)), Closes(0)});
}

TEST_F(TqTftp, ALineIsPrintedForEverySelectThatFindsNothing) {
    Play(Opened() + Steps{Passes(1000), Interrupts(), Interrupts(), Passes(3500), Interrupts(),
                          Sends(Server(), Data(1, "x")), Reads("x"),
                          Prints("(TqTftp, 0): select() failed (4) .\r\n"
                                 "(TqTftp, 0): select() timeout  .\r\n"),
                          Waits({4, 3, 8}), Arrives(RequestPort(), Request("f", "octet")),
                          Arrives(Server(), Acknowledgement(1)), Closes(0)});
}

TEST_F(TqTftp, AnInterruptedReceiveWaitsAgainForWhatIsLeft) {
    Play(Accepted(1) + Steps{Waits({4}), Passes(1200), Interrupts(), Interrupts(), Passes(1200),
                             Interrupts(), Interrupts(), Sends(Server(), Data(2, "x")), Reads("x"),
                             Waits({4, 2, 1}), Arrives(Server(), Acknowledgement(2)), Closes(0)});
}

TEST_F(TqTftp, AnExpiredWaitSendsTheRequestAgainBeforeTheFirstBlock) {
    Play(Opened() + Steps{Passes(4000), Interrupts(), Sends(Server(), Data(1, "x")), Reads("x"),
                          Arrives(RequestPort(), Request("f", "octet")),
                          Arrives(Server(), Acknowledgement(1)), Waits({4, 8}), Closes(0)});
}

TEST_F(TqTftp, AnExpiredWaitSendsTheAcknowledgementAgainAfterABlock) {
    Play(Accepted(2) + Steps{Waits({4, 4}), Passes(4000), Interrupts(),
                             Sends(Server(), Data(3, "x")), Reads("x"),
                             Arrives(Server(), Acknowledgement(2)),
                             Arrives(Server(), Acknowledgement(3)), Waits({4, 8}), Closes(0)});
}

TEST_F(TqTftp, TheTimeoutDoublesToAMinuteAndResendsWithoutAnEnd) {
    Steps steps = Opened();
    for (const unsigned int seconds : {4u, 8u, 16u, 32u, 60u, 60u, 60u, 60u, 60u, 60u}) {
        steps.push_back(Passes(seconds * 1000));
        steps.push_back(Interrupts());
    }
    steps.push_back(Sends(Server(), Data(1, "x")));
    steps.push_back(Reads("x"));
    for (int i = 0; i < 10; ++i) steps.push_back(Arrives(RequestPort(), Request("f", "octet")));
    Play(steps + Steps{Waits({4, 8, 16, 32, 60, 60, 60, 60, 60, 60, 60}),
                       Arrives(Server(), Acknowledgement(1)), Closes(0)});
}

TEST_F(TqTftp, TheTimeoutOfATransferOnlyGrows) {
    // Every read begins with a restart, so that no answer is a sample.
    Play(Accepted(1) +
         Steps{Passes(4000), Interrupts(), Passes(10), Sends(Server(), Data(2, Block(2))),
               Reads(Block(2)), Arrives(Server(), Acknowledgement(1)),
               Arrives(Server(), Acknowledgement(2)), Passes(10),
               Sends(Server(), Data(3, Block(3))), Reads(Block(3)),
               Arrives(Server(), Acknowledgement(3)), Sends(Server(), Data(4, "x")), Reads("x"),
               Waits({4, 4, 8, 8, 8}), Arrives(Server(), Acknowledgement(4)), Closes(0)});
}

TEST_F(TqTftp, ALateAnswerStillCountsAfterAResend) {
    Play(Accepted(1) + Steps{Passes(4500), Interrupts(), Passes(2000),
                             Sends(Server(), Data(2, "late")), Reads("late"),
                             Arrives(Server(), Acknowledgement(1)),
                             Arrives(Server(), Acknowledgement(2)), Closes(0)});
}

TEST_F(TqTftp, TheCallersTimeBetweenReadsIsNoPartOfTheWait) {
    time_t pause = 0;
    systemCalls.gettimeofday = [&pause] {
        timeval time = timeval();
        time.tv_sec = 1000 + pause;
        return time;
    };
    const UdpSocket server(RequestPort());
    Endpoint client = OpenedFor(server);
    Octets datagram;
    for (unsigned int block = 1; block <= 3; ++block) {
        pause += 10;
        server.Send(client, Data(block, Block(block)));
        unsigned int length = 0;
        ASSERT_NE(TFTP_read(&length), nullptr);
        ASSERT_TRUE(server.Receive(datagram, client, 20000));
        EXPECT_EQ(datagram, Acknowledgement(block));
    }
    EXPECT_EQ(TFTP_close(), 0u);
    EXPECT_FALSE(server.Receive(datagram, client, 0));
}

TEST_F(TqTftp, AFailedReceiveEndsTheTransferAndSendsNothing) {
    for (const int error : {EBADF, ENOMEM, ECONNREFUSED, EAGAIN, ENOTSOCK}) {
        Play(Opened() + Steps{ReceiveFails(error), Fails(0x814), EndOfFile(1), Closes(0x704)});
        Play(Accepted(1) + Steps{ReceiveFails(error), Fails(0x814), EndOfFile(1), Closes(0x704)});
    }
}

TEST_F(TqTftp, ADescriptorClosedBehindTheClientsBackEndsTheTransfer) {
    const int descriptor = NextDescriptor();
    TFTP_OPEN_STRUCT request = RequestOf("f", "octet");
    ASSERT_EQ(TFTP_open(&request), 0u);
    unsigned int length = 0;
    testing::internal::CaptureStdout();
    close(descriptor);  // now, because capturing opens files and could be given the same number
    EXPECT_EQ(TFTP_read(&length), nullptr);
    EXPECT_NE(testing::internal::GetCapturedStdout().find("select() failed (9) .\r\n"),
              std::string::npos);
    EXPECT_EQ(length, 0x814u);
    EXPECT_EQ(TFTP_eof(), 1u);
    EXPECT_EQ(TFTP_close(), 0x704u);
}

TEST_F(TqTftp, AReadOfAClosedTransferFailsAtOnceAndSilently) {
    Play(Accepted(1) + Steps{Closes(0)});
    systemCalls.select = [](int, fd_set*, timeval*) {
        ADD_FAILURE() << "there is nothing to wait for";
        return 0;
    };
    systemCalls.sendto = [](int, const void*, std::size_t, int, const sockaddr*, socklen_t) {
        ADD_FAILURE() << "there is nobody to send to";
        return ssize_t(-1);
    };
    testing::internal::CaptureStdout();
    unsigned int length = 0;
    EXPECT_EQ(TFTP_read(&length), nullptr);
    EXPECT_EQ(length, 0x814u);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(TFTP_close(), 0x704u);
}

// TFTP_close.

TEST_F(TqTftp, ClosingEndsTheFileAndTheSocket) {
    const int descriptor = NextDescriptor();
    TFTP_OPEN_STRUCT request = RequestOf("f", "octet");
    ASSERT_EQ(TFTP_open(&request), 0u);
    EXPECT_EQ(TFTP_eof(), 0u);
    EXPECT_EQ(TFTP_close(), 0u);
    EXPECT_EQ(TFTP_eof(), 1u);
    EXPECT_FALSE(IsOpen(descriptor));
    EXPECT_EQ(TFTP_close(), 0x704u);
    EXPECT_EQ(TFTP_close(), 0x704u);
    EXPECT_EQ(TFTP_eof(), 1u);
}

TEST_F(TqTftp, ClosingReturnsTheResultOfClose) {
    const int descriptor = NextDescriptor();
    TFTP_OPEN_STRUCT request = RequestOf("f", "octet");
    ASSERT_EQ(TFTP_open(&request), 0u);
    close(descriptor);
    EXPECT_EQ(TFTP_close(), 0xFFFFFFFFu);
    EXPECT_EQ(TFTP_eof(), 1u);
    EXPECT_EQ(TFTP_close(), 0x704u);
}

// As in a process that was started with its standard input closed.
TEST_F(TqTftp, ATransferMayHaveDescriptorZero) {
    const UdpSocket server(RequestPort());
    const int input = dup(0);
    close(0);
    const Endpoint client = OpenedFor(server);
    EXPECT_TRUE(IsOpen(0));
    server.Send(client, Data(1, "x"));
    unsigned int length = 0;
    const unsigned char* data = TFTP_read(&length);
    ASSERT_NE(data, nullptr) << std::hex << length;
    EXPECT_EQ(Octets(reinterpret_cast<const char*>(data), length), "x");
    EXPECT_EQ(TFTP_eof(), 1u);
    EXPECT_EQ(TFTP_close(), 0u);
    EXPECT_FALSE(IsOpen(0));
    EXPECT_EQ(dup2(input, 0), 0);
    close(input);
}

TEST_F(TqTftp, ATransferMayFollowAnyOther) {
    const int descriptor = NextDescriptor();
    for (int i = 0; i < 50; ++i) {
        Play(Opened() + Steps{Sends(Server(), Data(1, "x")), Reads("x"),
                              Arrives(Server(), Acknowledgement(1)), Closes(0)});
        Play(Opened() + Steps{Sends(Server(), Error(0, "")), Fails(0x810)});
        Play(Opened() + Steps{Sends(Server(), "x")} + EndsAsViolation(Server()));
        EXPECT_EQ(NextDescriptor(), descriptor);
    }
}

// Time-outs.

static_assert(offsetof(TFTP_TO_STRUCT, startTime) == 0, "");
static_assert(offsetof(TFTP_TO_STRUCT, sampleValid) == 4, "");
static_assert(offsetof(TFTP_TO_STRUCT, timeout) == 8, "");
static_assert(offsetof(TFTP_TO_STRUCT, smoothedRtt) == 12, "");
static_assert(offsetof(TFTP_TO_STRUCT, rttVariance) == 16, "");
static_assert(sizeof(TFTP_TO_STRUCT) == 20, "");

using Fields = std::vector<unsigned int>;

Fields FieldsOf(const TFTP_TO_STRUCT& to) {
    return {to.startTime, to.sampleValid, to.timeout, to.smoothedRtt, to.rttVariance};
}

// The clock is the test's: a number of milliseconds, set as the test wants it.
class TqTftpTimeout : public testing::Test {
protected:
    TqTftpTimeout() {
        systemCalls.gettimeofday = [this] {
            timeval time = timeval();
            time.tv_sec = static_cast<time_t>(now / 1000);
            time.tv_usec = static_cast<suseconds_t>(now % 1000 * 1000);
            return time;
        };
    }
    ~TqTftpTimeout() override { systemCalls = SystemCalls(); }

    unsigned long long now = 5000;
    unsigned int expired = 7;
};

TEST_F(TqTftpTimeout, InitBeginsAWaitOf4000) {
    TFTP_TO_STRUCT to = {9, 9, 9, 9, 9};
    EXPECT_EQ(TFTP_timeout_init(&to), 4000u);
    EXPECT_EQ(FieldsOf(to), Fields({5000, 1, 4000, 4000, 0}));
}

TEST_F(TqTftpTimeout, JustAfterInitEverythingIsLeft) {
    TFTP_TO_STRUCT to;
    TFTP_timeout_init(&to);
    EXPECT_EQ(TFTP_timeout_left(&to, &expired), 4000u);
    EXPECT_EQ(expired, 0u);
    EXPECT_EQ(FieldsOf(to), Fields({5000, 1, 4000, 4000, 0}));
}

TEST_F(TqTftpTimeout, RestartBeginsAWaitThatIsNoSampleAndReturnsTheTimeout) {
    TFTP_TO_STRUCT to = {1, 1, 1234, 77, 88};
    EXPECT_EQ(TFTP_timeout_restart(&to), 1234u);
    EXPECT_EQ(FieldsOf(to), Fields({5000, 0, 1234, 77, 88}));
}

TEST_F(TqTftpTimeout, LeftCountsDownToTheLastMillisecond) {
    TFTP_TO_STRUCT to;
    TFTP_timeout_init(&to);
    now = 5001;
    EXPECT_EQ(TFTP_timeout_left(&to, nullptr), 3999u);
    now = 8999;
    EXPECT_EQ(TFTP_timeout_left(&to, &expired), 1u);
    EXPECT_EQ(expired, 0u);
    EXPECT_EQ(FieldsOf(to), Fields({5000, 1, 4000, 4000, 0}));
}

TEST_F(TqTftpTimeout, AWaitExpiresWhenTheTimeoutIsReachedExactly) {
    TFTP_TO_STRUCT to;
    TFTP_timeout_init(&to);
    now = 9000;
    EXPECT_EQ(TFTP_timeout_left(&to, &expired), 8000u);
    EXPECT_EQ(expired, 1u);
    EXPECT_EQ(FieldsOf(to), Fields({9000, 0, 8000, 4000, 0}));
}

TEST_F(TqTftpTimeout, ExpiryDoublesWithoutAnybodyAsking) {
    TFTP_TO_STRUCT to;
    TFTP_timeout_init(&to);
    now = 12345;
    EXPECT_EQ(TFTP_timeout_left(&to, nullptr), 8000u);
    EXPECT_EQ(FieldsOf(to), Fields({12345, 0, 8000, 4000, 0}));
}

TEST_F(TqTftpTimeout, ARunOfExpiriesDoublesToAMinute) {
    TFTP_TO_STRUCT to;
    TFTP_timeout_init(&to);
    Fields timeouts;
    for (int i = 0; i < 7; ++i) {
        now += to.timeout;
        timeouts.push_back(TFTP_timeout_left(&to, &expired));
        EXPECT_EQ(expired, 1u);
    }
    EXPECT_EQ(timeouts, Fields({8000, 16000, 32000, 60000, 60000, 60000, 60000}));
}

TEST_F(TqTftpTimeout, DoublingIsCutTo60000AndNotBefore) {
    const unsigned int cases[][2] = {
        {0, 0},         {1, 2},         {29999, 59998}, {30000, 60000},       {30001, 60000},
        {40000, 60000}, {60000, 60000}, {60001, 60000}, {0x80000000u, 60000}, {0xFFFFFFFFu, 60000}};
    for (const unsigned int* timeoutAndDouble : cases) {
        TFTP_TO_STRUCT to = {static_cast<unsigned int>(now) - timeoutAndDouble[0], 1,
                             timeoutAndDouble[0], 4000, 0};
        EXPECT_EQ(TFTP_timeout_left(&to, &expired), timeoutAndDouble[1]);
        EXPECT_EQ(expired, 1u);
        EXPECT_EQ(to.timeout, timeoutAndDouble[1]);
    }
}

TEST_F(TqTftpTimeout, AnAnswerAfter100MillisecondsGivesTheWorkedExample) {
    TFTP_TO_STRUCT to;
    TFTP_timeout_init(&to);
    now = 5100;
    EXPECT_EQ(TFTP_timeout_update(&to), 7412u);
    EXPECT_EQ(FieldsOf(to), Fields({5100, 1, 7412, 3512, 975}));
}

TEST_F(TqTftpTimeout, SamplesApproachTheRoundTripTime) {
    TFTP_TO_STRUCT to;
    TFTP_timeout_init(&to);
    Fields timeouts;
    for (int i = 0; i < 6; ++i) {
        now += 100;
        timeouts.push_back(TFTP_timeout_update(&to));
    }
    EXPECT_EQ(timeouts, Fields({7412, 9421, 10447, 10796, 10690, 10288}));
    for (int i = 0; i < 200; ++i) {
        now += 100;
        TFTP_timeout_update(&to);
    }
    EXPECT_EQ(to.smoothedRtt, 100u);
    EXPECT_EQ(to.rttVariance, 1u);
}

TEST_F(TqTftpTimeout, ALongerRoundTripRaisesTheTimeout) {
    TFTP_TO_STRUCT to = {5000, 1, 140, 100, 10};
    now = 5500;
    // err = 400: 100 + 50; 10 + (390 >> 2) = 107
    EXPECT_EQ(TFTP_timeout_update(&to), 150u + 4 * 107u);
    EXPECT_EQ(FieldsOf(to), Fields({5500, 1, 578, 150, 107}));
}

TEST_F(TqTftpTimeout, ShiftsOfNegativeNumbersRoundDown) {
    TFTP_TO_STRUCT to = {5000, 1, 140, 100, 10};
    now = 5099;
    // err = -1: -1 >> 3 is -1; |err| - 10 = -9: -9 >> 2 is -3
    EXPECT_EQ(TFTP_timeout_update(&to), 99u + 4 * 7u);
    EXPECT_EQ(FieldsOf(to), Fields({5099, 1, 127, 99, 7}));
}

TEST_F(TqTftpTimeout, AnAnswerOneMillisecondEarlyIsADeviationOfOne) {
    TFTP_TO_STRUCT to = {5000, 1, 4000, 100, 5};
    now = 5099;
    // err = -1: -1 >> 3 is -1; |err| - 5 = -4: -4 >> 2 is -1
    EXPECT_EQ(TFTP_timeout_update(&to), 99u + 4 * 4u);
    EXPECT_EQ(FieldsOf(to), Fields({5099, 1, 115, 99, 4}));
}

TEST_F(TqTftpTimeout, NeitherTheTimeNorTheDeviationBecomesZero) {
    TFTP_TO_STRUCT to = {5000, 1, 1, 1, 1};
    // err = -1: 1 - 1 becomes 1; |err| - 1 = 0 leaves 1
    EXPECT_EQ(TFTP_timeout_update(&to), 5u);
    EXPECT_EQ(FieldsOf(to), Fields({5000, 1, 5, 1, 1}));
    to = {5000, 1, 1, 0, 0};
    EXPECT_EQ(TFTP_timeout_update(&to), 5u);
    EXPECT_EQ(FieldsOf(to), Fields({5000, 1, 5, 1, 1}));
}

TEST_F(TqTftpTimeout, ASampleIsNotBounded) {
    TFTP_TO_STRUCT to = {0, 1, 4000, 4000, 0};
    now = 804000;
    // err = 800000
    EXPECT_EQ(TFTP_timeout_update(&to), 104000u + 4 * 200000u);
    to = {0, 1, 4000, 0x80000000u, 0};
    now = 0;
    // err = -2^31, whose magnitude is -2^31 again
    EXPECT_EQ(TFTP_timeout_update(&to), 0x70000000u + 4 * 0xE0000000u);
    EXPECT_EQ(to.smoothedRtt, 0x70000000u);
    EXPECT_EQ(to.rttVariance, 0xE0000000u);
}

TEST_F(TqTftpTimeout, AnUpdateAfterARestartTakesNoSample) {
    TFTP_TO_STRUCT to = {1, 1, 1234, 77, 88};
    TFTP_timeout_restart(&to);
    now = 5100;
    EXPECT_EQ(TFTP_timeout_update(&to), 1234u);
    EXPECT_EQ(FieldsOf(to), Fields({5100, 1, 1234, 77, 88}));
}

TEST_F(TqTftpTimeout, AnUpdateAfterAnExpiryTakesNoSample) {
    TFTP_TO_STRUCT to;
    TFTP_timeout_init(&to);
    now += 4000;
    TFTP_timeout_left(&to, nullptr);
    now += 100;
    EXPECT_EQ(TFTP_timeout_update(&to), 8000u);
    EXPECT_EQ(FieldsOf(to), Fields({9100, 1, 8000, 4000, 0}));
}

TEST_F(TqTftpTimeout, TheUpdateAfterOneWithoutASampleTakesOneAgain) {
    TFTP_TO_STRUCT to;
    TFTP_timeout_init(&to);
    TFTP_timeout_restart(&to);
    TFTP_timeout_update(&to);
    now += 100;
    EXPECT_EQ(TFTP_timeout_update(&to), 7412u);
}

TEST_F(TqTftpTimeout, OnlyTheFlagOneAllowsASample) {
    TFTP_TO_STRUCT to = {5000, 2, 1234, 77, 88};
    EXPECT_EQ(TFTP_timeout_update(&to), 1234u);
    EXPECT_EQ(FieldsOf(to), Fields({5000, 1, 1234, 77, 88}));
}

TEST_F(TqTftpTimeout, TheWrapOfTheClockIsHarmless) {
    now = (1ull << 32) - 50;
    TFTP_TO_STRUCT to;
    TFTP_timeout_init(&to);
    EXPECT_EQ(to.startTime, 0xFFFFFFFFu - 49u);
    now += 100;
    EXPECT_EQ(RTCS_time_get(), 50u);
    EXPECT_EQ(TFTP_timeout_left(&to, &expired), 3900u);
    EXPECT_EQ(expired, 0u);
    EXPECT_EQ(TFTP_timeout_update(&to), 7412u);
    EXPECT_EQ(to.startTime, 50u);
}

TEST_F(TqTftpTimeout, AWaitAcrossTheWrapOfTheClockExpiresInTime) {
    now = (1ull << 32) - 50;
    TFTP_TO_STRUCT to;
    TFTP_timeout_init(&to);
    now += 10;
    EXPECT_EQ(TFTP_timeout_left(&to, &expired), 3990u);
    EXPECT_EQ(expired, 0u);
    now += 3989;
    EXPECT_EQ(TFTP_timeout_left(&to, &expired), 1u);
    EXPECT_EQ(expired, 0u);
    now += 1;
    EXPECT_EQ(TFTP_timeout_left(&to, &expired), 8000u);
    EXPECT_EQ(expired, 1u);
}

// Seconds and microseconds, and the milliseconds they make.
struct Reading {
    long seconds;
    long microseconds;
    unsigned int milliseconds;
};

class RtcsTime : public testing::Test {
protected:
    ~RtcsTime() override { systemCalls = SystemCalls(); }

    static void ExpectRead(const Reading& reading) {
        systemCalls.gettimeofday = [&reading] {
            timeval time = timeval();
            time.tv_sec = static_cast<time_t>(reading.seconds);
            time.tv_usec = static_cast<suseconds_t>(reading.microseconds);
            return time;
        };
        EXPECT_EQ(RTCS_time_get(), reading.milliseconds)
            << reading.seconds << " s, " << reading.microseconds << " us";
    }
};

TEST_F(RtcsTime, RoundsMoreThanHalfAMillisecondUp) {
    const Reading readings[] = {
        {0, 0, 0},        {0, 1, 0},         {0, 499, 0},         {0, 500, 0},
        {0, 501, 1},      {0, 999, 1},       {0, 1000, 1},        {0, 1500, 1},
        {0, 1501, 2},     {1, 0, 1000},      {12, 345500, 12345}, {12, 345501, 12346},
        {0, 999500, 999}, {0, 999501, 1000}, {7, 999999, 8000},
    };
    for (const Reading& reading : readings) ExpectRead(reading);
}

TEST_F(RtcsTime, KeepsTheLow32Bits) {
    const Reading readings[] = {
        {4294967, 295000, 0xFFFFFFFFu},
        {4294967, 296000, 0},
        {4294967, 295501, 0},
        {1700000000, 123000, static_cast<unsigned int>(1700000000123ull & 0xFFFFFFFFull)},
    };
    for (const Reading& reading : readings) ExpectRead(reading);
}

TEST_F(RtcsTime, IsTheWallClock) {
    timeval before;
    gettimeofday(&before, nullptr);
    const unsigned int time = RTCS_time_get();
    timeval after;
    gettimeofday(&after, nullptr);
    const unsigned int start = static_cast<unsigned int>(before.tv_sec) * 1000 +
                               static_cast<unsigned int>(before.tv_usec) / 1000;
    const unsigned int end = static_cast<unsigned int>(after.tv_sec) * 1000 +
                             static_cast<unsigned int>(after.tv_usec) / 1000 + 1;
    EXPECT_LE(time - start, end - start);
}

}  // namespace
