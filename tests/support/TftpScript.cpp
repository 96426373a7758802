#include "TftpScript.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <deque>
#include <map>

#include "SystemCalls.h"
#include "TqTftp.h"

namespace {

const int patience = 20000;  // milliseconds for what must come at once

struct Sent {
    Endpoint to;
    Octets bytes;
};

// Collects what is printed while a Scope lives. The test's own messages stay where they belong.
class Printed {
public:
    Printed() : output(dup(1)), file(memfd_create("printed", MFD_CLOEXEC)) {}
    ~Printed() {
        close(output);
        close(file);
    }

    class Scope {
    public:
        explicit Scope(const Printed& printed) : output(printed.output) { Redirect(printed.file); }
        ~Scope() { Redirect(output); }

    private:
        static void Redirect(int to) {
            std::fflush(stdout);
            dup2(to, 1);
        }

        const int output;
    };

    std::string Take() {
        std::string text(static_cast<std::size_t>(lseek(file, 0, SEEK_CUR)), '\0');
        EXPECT_EQ(pread(file, &text[0], text.size(), 0), static_cast<ssize_t>(text.size()));
        EXPECT_EQ(ftruncate(file, 0), 0);
        lseek(file, 0, SEEK_SET);
        return text;
    }

private:
    const int output;
    const int file;
};

// "(TqTftp, 123): ..." with another line number: 0.
std::string WithLinesZero(std::string text) {
    const std::string start = "(TqTftp, ";
    for (std::size_t at = 0; (at = text.find(start, at)) != std::string::npos;) {
        at += start.size();
        const std::size_t digits = text.find_first_not_of("0123456789", at) - at;
        if (digits != 0 && text[at] != '0') text.replace(at, digits, "0");
    }
    return text;
}

class Player {
public:
    explicit Player(const std::vector<Step>& steps);

    void Play(const Step& step);
    void Finish();

private:
    class Stage;

    void Open(const Step& step);
    void ExpectArrival(const Step& step);
    void Read(const Step& step);
    const unsigned char* ReadOnStage(unsigned int& length);
    void ExpectOutput(const Step& step);
    void Deliver(const Step& step);
    bool NextIs(Step::Kind kind) const { return !events.empty() && events.front().kind == kind; }
    Step TakeEvent();
    void PassUpTo(unsigned int milliseconds);

    timeval Clock() const;
    int Select(int count, fd_set* readable, timeval* wait);
    ssize_t Sendto(int descriptor, const void* bytes, std::size_t length, int flags,
                   const sockaddr* address, socklen_t addressLength);
    ssize_t Recvfrom(int descriptor, void* bytes, std::size_t length, int flags, sockaddr* address,
                     socklen_t* addressLength);

    std::map<Endpoint, UdpSocket> peers;
    Endpoint client = {0, 0};
    std::deque<Step> events;
    std::deque<Sent> sent;
    std::vector<unsigned int> waits;
    Printed printed;
    unsigned long long now = 1000000;
    int datagramsOnTheirWay = 0;
};

Player::Player(const std::vector<Step>& steps) {
    for (const Step& step : steps) {
        if (step.peer.port == 0 || peers.count(step.peer) != 0) continue;
        peers.emplace(step.peer, UdpSocket(step.peer));
    }
}

// The client sees the script's time and network as long as this lives; the peers see the real ones.
class Player::Stage {
public:
    explicit Stage(Player& player) : before(systemCalls) {
        systemCalls.gettimeofday = [&player] { return player.Clock(); };
        systemCalls.select = [&player](int count, fd_set* readable, timeval* wait) {
            return player.Select(count, readable, wait);
        };
        systemCalls.sendto = [&player](int descriptor, const void* bytes, std::size_t length,
                                       int flags, const sockaddr* address,
                                       socklen_t addressLength) {
            return player.Sendto(descriptor, bytes, length, flags, address, addressLength);
        };
        systemCalls.recvfrom = [&player](int descriptor, void* bytes, std::size_t length, int flags,
                                         sockaddr* address, socklen_t* addressLength) {
            return player.Recvfrom(descriptor, bytes, length, flags, address, addressLength);
        };
    }
    ~Stage() { systemCalls = before; }

private:
    const SystemCalls before;
};

void Player::Play(const Step& step) {
    switch (step.kind) {
        case Step::opens:
            return Open(step);
        case Step::arrives:
            return ExpectArrival(step);
        case Step::reads:
        case Step::fails:
            return Read(step);
        case Step::waits:
            EXPECT_EQ(waits, step.numbers);
            return waits.clear();
        case Step::prints:
            return ExpectOutput(step);
        case Step::endOfFile:
            EXPECT_EQ(TFTP_eof(), step.number);
            return;
        case Step::closes:
            EXPECT_EQ(TFTP_close(), step.number);
            return;
        default:
            return events.push_back(step);
    }
}

void Player::Finish() {
    EXPECT_TRUE(events.empty()) << "the script ends with events that no read could meet";
    for (const Sent& datagram : sent) {
        ADD_FAILURE() << "the client sent to " << ToText(datagram.to) << ": "
                      << testing::PrintToString(datagram.bytes);
    }
}

void Player::Open(const Step& step) {
    TFTP_OPEN_STRUCT request = {htonl(Host(1)), step.bytes.c_str(), step.mode.c_str()};
    client = {0, 0};
    const Stage stage(*this);
    EXPECT_EQ(TFTP_open(&request), 0u);
}

void Player::ExpectArrival(const Step& step) {
    ASSERT_FALSE(sent.empty()) << "the client did not send " << testing::PrintToString(step.bytes);
    EXPECT_EQ(ToText(sent.front().to), ToText(step.peer));
    EXPECT_EQ(sent.front().bytes, step.bytes);
    sent.pop_front();
    Octets datagram;
    Endpoint sender;
    ASSERT_TRUE(peers.at(step.peer).Receive(datagram, sender, patience));
    EXPECT_EQ(datagram, step.bytes);
    if (client.port == 0) client = sender;
    EXPECT_EQ(ToText(sender), ToText(client));
}

const unsigned char* Player::ReadOnStage(unsigned int& length) {
    const Printed::Scope scope(printed);
    const Stage stage(*this);
    return TFTP_read(&length);
}

void Player::Read(const Step& step) {
    unsigned int length = 12345;
    const unsigned char* data = ReadOnStage(length);
    EXPECT_TRUE(events.empty()) << "the read returned before " << events.size() << " events";
    events.clear();
    if (step.kind == Step::fails) {
        EXPECT_EQ(data, nullptr);
        EXPECT_EQ(length, step.number);
        return;
    }
    ASSERT_NE(data, nullptr) << "failed with " << length;
    EXPECT_EQ(Octets(reinterpret_cast<const char*>(data), length), step.bytes);
}

void Player::ExpectOutput(const Step& step) {
    EXPECT_EQ(WithLinesZero(printed.Take()), step.bytes);
}

Step Player::TakeEvent() {
    const Step event = events.front();
    events.pop_front();
    return event;
}

void Player::Deliver(const Step& step) {
    peers.at(step.peer).Send(client, step.bytes);
    ++datagramsOnTheirWay;
}

timeval Player::Clock() const {
    timeval time = timeval();
    time.tv_sec = static_cast<time_t>(now / 1000);
    time.tv_usec = static_cast<suseconds_t>(now % 1000 * 1000);
    return time;
}

// Lets time pass, as far as the script has it pass now.
void Player::PassUpTo(unsigned int milliseconds) {
    while (NextIs(Step::passes) && milliseconds != 0) {
        const unsigned int passed = std::min(milliseconds, events.front().number);
        now += passed;
        milliseconds -= passed;
        events.front().number -= passed;
        if (events.front().number == 0) events.pop_front();
    }
}

int Player::Select(int count, fd_set* readable, timeval* wait) {
    waits.push_back(static_cast<unsigned int>(wait->tv_sec));
    EXPECT_EQ(wait->tv_usec, 0);
    const unsigned long long end = now + static_cast<unsigned long long>(wait->tv_sec) * 1000;
    PassUpTo(static_cast<unsigned int>(end - now));
    if (NextIs(Step::selectFails)) {
        errno = static_cast<int>(TakeEvent().number);
        return -1;
    }
    if (NextIs(Step::interrupts) && now < end) {
        TakeEvent();
        errno = EINTR;
        return -1;
    }
    if (!NextIs(Step::sends)) return 0;
    Deliver(TakeEvent());
    timeval soon = timeval();
    soon.tv_sec = patience / 1000;
    return select(count, readable, nullptr, nullptr, &soon);
}

ssize_t Player::Sendto(int descriptor, const void* bytes, std::size_t length, int flags,
                       const sockaddr* address, socklen_t addressLength) {
    const Endpoint to = ToEndpoint(*reinterpret_cast<const sockaddr_in*>(address));
    sent.push_back({to, Octets(static_cast<const char*>(bytes), length)});
    return sendto(descriptor, bytes, length, flags, address, addressLength);
}

ssize_t Player::Recvfrom(int descriptor, void* bytes, std::size_t length, int flags,
                         sockaddr* address, socklen_t* addressLength) {
    EXPECT_EQ(length, 516u);
    EXPECT_EQ(flags & MSG_DONTWAIT, 0) << "the receive must block";
    if (datagramsOnTheirWay == 0) {
        PassUpTo(~0u);
        if (events.empty()) {
            ADD_FAILURE() << "the client receives, and nothing happens any more";
            errno = EBADF;
            return -1;
        }
        const Step event = TakeEvent();
        if (event.kind != Step::sends) {
            EXPECT_NE(event.kind, Step::selectFails) << "the client did not wait in select";
            errno = event.kind == Step::interrupts ? EINTR : static_cast<int>(event.number);
            return -1;
        }
        Deliver(event);
    }
    --datagramsOnTheirWay;
    return recvfrom(descriptor, bytes, length, flags, address, addressLength);
}

Octets Number(unsigned int number) {
    return Octets{static_cast<char>(number >> 8), static_cast<char>(number)};
}

Octets PaddedTo34(Octets packet) {
    packet.resize(34, '\0');
    return packet;
}

}  // namespace

Step Opens(const std::string& fileName, const std::string& mode) {
    return {Step::opens, {0, 0}, fileName, 0, mode};
}

Step Arrives(const Endpoint& peer, const Octets& datagram) {
    return {Step::arrives, peer, datagram};
}

Step Sends(const Endpoint& peer, const Octets& datagram) {
    return {Step::sends, peer, datagram};
}

Step Passes(unsigned int milliseconds) {
    return {Step::passes, {0, 0}, Octets(), milliseconds};
}

Step Interrupts() {
    return {Step::interrupts};
}

Step SelectFails(int error) {
    return {Step::selectFails, {0, 0}, Octets(), static_cast<unsigned int>(error)};
}

Step ReceiveFails(int error) {
    return {Step::receiveFails, {0, 0}, Octets(), static_cast<unsigned int>(error)};
}

Step Reads(const Octets& data) {
    return {Step::reads, {0, 0}, data};
}

Step Fails(unsigned int code) {
    return {Step::fails, {0, 0}, Octets(), code};
}

Step Waits(const std::vector<unsigned int>& seconds) {
    return {Step::waits, {0, 0}, Octets(), 0, std::string(), seconds};
}

Step Prints(const std::string& text) {
    return {Step::prints, {0, 0}, text};
}

Step EndOfFile(unsigned int flag) {
    return {Step::endOfFile, {0, 0}, Octets(), flag};
}

Step Closes(unsigned int result) {
    return {Step::closes, {0, 0}, Octets(), result};
}

void Play(const std::vector<Step>& steps) {
    Player player(steps);
    for (std::size_t i = 0; i < steps.size() && !testing::Test::HasFatalFailure(); ++i) {
        SCOPED_TRACE("step " + std::to_string(i));
        player.Play(steps[i]);
    }
    if (!testing::Test::HasFatalFailure()) player.Finish();
}

Octets Request(const std::string& fileName, const std::string& mode) {
    return Number(1) + fileName + '\0' + mode + '\0';
}

Octets Data(unsigned int block, const Octets& data) {
    return Number(3) + Number(block) + data;
}

Octets Acknowledgement(unsigned int block) {
    return Number(4) + Number(block);
}

Octets Error(unsigned int code, const std::string& text) {
    return Number(5) + Number(code) + text + '\0';
}

Octets IllegalOperation() {
    return PaddedTo34(Error(4, "Illegal Operation"));
}

Octets InvalidTid() {
    return PaddedTo34(Error(5, "Invalid TID"));
}

Octets Block(unsigned int number, std::size_t length) {
    Octets data(length, '\0');
    for (std::size_t i = 0; i < length; ++i) {
        data[i] = static_cast<char>((number * 7 + i * 13 + i / 256) & 0xFF);
    }
    return data;
}
