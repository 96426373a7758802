// The TFTP client with arbitrary datagrams, results of system calls and clocks. Every call that it
// makes is written down with its result; a plain client that goes through the same results must
// make the same calls.

#include <arpa/inet.h>
#include <dlfcn.h>
#include <netinet/in.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

#include "../Fuzz.h"
#include "TqTftp.h"

namespace Tftp {

const int descriptor = 5;
const unsigned int server = 0x0A000001;

/// One system call as the client made it.
struct Call {
    std::string name;
    std::string bytes;  // what was sent, or what was received
    unsigned int host;  // to whom, or from whom
    unsigned int port;
    unsigned int number;  // the wait, or the descriptor
    long result;
};

/// Makes up results and writes everything down.
class System {
public:
    explicit System(Input& itsInput) : input(itsInput) { present = this; }
    ~System() { present = nullptr; }

    System(const System&) = delete;
    System& operator=(const System&) = delete;

    int Socket() {
        const unsigned int kind = input.Below(32);
        return Made({"socket", "", 0, 0, 0, kind == 1 ? -1 : kind == 2 ? FD_SETSIZE : descriptor});
    }
    int Bind(int where) {
        return Made(
            {"bind", "", 0, 0, static_cast<unsigned int>(where), input.Below(32) == 1 ? -1 : 0});
    }
    int Close(int where) {
        return Made(
            {"close", "", 0, 0, static_cast<unsigned int>(where), input.Below(32) == 1 ? -1 : 0});
    }
    int Select(int count, const fd_set* readable, const timeval& wait) {
        MUST(count == descriptor + 1 && FD_ISSET(descriptor, readable) && wait.tv_usec == 0);
        const unsigned int kind = input.Below(16);
        errno = ENOMEM;
        return Made({"select", "", 0, 0, static_cast<unsigned int>(wait.tv_sec),
                     kind == 1   ? -1
                     : kind == 2 ? 0
                                 : 1});
    }
    ssize_t Send(const std::string& bytes, const sockaddr_in& to) {
        const unsigned int kind = input.Below(32);
        const long length = static_cast<long>(bytes.size());
        if (bytes.size() == 4 && bytes[1] == 4) acknowledged = bytes.substr(2);
        return Made({"send", bytes, ntohl(to.sin_addr.s_addr), ntohs(to.sin_port), 0,
                     kind == 1   ? -1
                     : kind == 2 ? length - 1
                                 : length});
    }
    ssize_t Receive(unsigned char* bytes, sockaddr_in& from) {
        if (input.IsEmpty() || input.Below(24) == 1) {
            // There must be an end to what is interrupted.
            errno = input.IsEmpty() || input.Below(2) == 0 ? EBADF : EINTR;
            return Made({errno == EINTR ? "interrupted" : "unreceived", "", 0, 0, 0, -1});
        }
        const std::string datagram = Datagram();
        const std::string kept = datagram.substr(0, 516);
        std::memcpy(bytes, kept.data(), kept.size());
        const unsigned int who = input.Below(16);
        const unsigned int host = who == 1 ? server + 1 : server;
        const unsigned int port = who == 2 ? 3000 : 2000;
        from.sin_family = AF_INET;
        from.sin_addr.s_addr = htonl(host);
        from.sin_port = htons(static_cast<in_port_t>(port));
        return Made({"receive", kept, host, port, 0, static_cast<long>(datagram.size())});
    }
    timeval Time() {
        const unsigned int step = input.Byte();
        if (step >= 192) {
            now += (step - 191) * 700000ull;
        } else if (step == 191) {
            now = input.Number() * 1000000ull;
            now += input.Number() % 1000000;
        } else {
            now += step * 10;
        }
        timeval time = timeval();
        time.tv_sec = static_cast<time_t>(now / 1000000);
        time.tv_usec = static_cast<suseconds_t>(now % 1000000);
        const unsigned int rounded = now % 1000 > 500 ? 1 : 0;
        const unsigned int milliseconds = static_cast<unsigned int>(now / 1000) + rounded;
        Made({"clock", "", 0, 0, milliseconds, 0});
        return time;
    }

    static System* present;

    std::vector<Call> calls;

private:
    int Made(const Call& call) {
        calls.push_back(call);
        return static_cast<int>(call.result);
    }

    static std::string Header(unsigned int opcode, const std::string& number) {
        return std::string(1, '\0') + static_cast<char>(opcode) + number;
    }

    // In statements of their own: the order in a sum is the compiler's choice.
    std::string Headed(unsigned int opcode, unsigned int most) {
        const std::string number = input.Bytes(most);
        return Header(opcode, number) + input.Bytes(8);
    }

    // Mostly what a server sends, now and then anything.
    std::string Datagram() {
        std::string next = acknowledged;
        if (++next[1] == '\0') ++next[0];
        const unsigned int kind = input.Below(16);
        switch (kind) {
            case 0:
                return input.Bytes(40);
            case 1:
                return Headed(3, 2);
            case 2:
                return Headed(5, 4);
            case 3:
                return Header(3, acknowledged) + input.Bytes(8);
            case 4:
                return Header(3, next) + std::string(508 + input.Below(8), 'd');
            case 5:
                return Header(input.Byte(), next);
            case 6:
                return Header(5, next) + std::string(505 + input.Below(16), 'e');
            case 7:
                return Header(3, input.Bytes(2)) + std::string(512, 'd');
            default:
                return Header(3, next) + (kind < 10 ? input.Bytes(60) : std::string(512, 'd'));
        }
    }

    Input& input;
    std::string acknowledged{"\0\0", 2};
    unsigned long long now = 4294960000ull * 1000;
};

System* System::present;

/// A plain client, which goes through what the real one has written down.
class Client {
public:
    explicit Client(const std::vector<Call>& itsCalls) : calls(itsCalls) {}

    unsigned int Open(const std::string& name, const std::string& mode) {
        const long made = Take("socket").result;
        if (made == FD_SETSIZE) {
            MUST(Take("close").number == FD_SETSIZE);
            return 0x800;
        }
        if (made < 0) return 0x800;
        isOpen = true;
        const long bound = Take("bind").result;
        if (bound != 0) return Close(), static_cast<unsigned int>(bound);
        request = std::string("\0\1", 2) + name + '\0' + mode + '\0';
        port = 69;
        timeout = 4000;
        Restart();
        if (!Sends(request, server, port)) return Close(), 0x803;
        last = 0;
        endOfFile = 0;
        return 0;
    }

    /// The data, or nothing and a result code.
    bool Read(std::string& data, unsigned int& length) {
        if (!isOpen) return length = 0x814, false;
        Restart();
        for (;;) {
            Wait();
            const Call& call = calls[at++];
            if (call.name == "interrupted") continue;
            if (call.name == "unreceived") return Fail(0x814, length);
            MUST(call.name == "receive");
            if (call.host != server) continue;
            if (last != 0 && call.port != port) {
                Sends(Error(5, "Invalid TID"), call.host, call.port);
                continue;
            }
            if (call.result < 4) return Violate(call, length);
            const unsigned int opcode = NumberAt(call.bytes, 0);
            const unsigned int number = NumberAt(call.bytes, 2);
            if (opcode == 5) {
                text = call.bytes.substr(4);
                return Fail(0x810 + number, length);
            }
            if (opcode != 3 || call.result > 516) return Violate(call, length);
            if (number == last) {
                Restart();
                Acknowledge();
            } else if (number == last + 1) {
                return Accept(call, data, length);
            } else {
                return Violate(call, length);
            }
        }
    }

    unsigned int Close() {
        request.clear();
        if (!isOpen) return 0x704;
        isOpen = false;
        endOfFile = 1;
        const Call& call = Take("close");
        MUST(call.number == descriptor);
        return static_cast<unsigned int>(call.result);
    }

    bool HasEnded() const { return at == calls.size(); }
    unsigned int EndOfFile() const { return endOfFile; }
    const std::string& ErrorText() const { return text; }
    const std::string& Complaints() const { return complaints; }

private:
    const Call& Take(const char* name) {
        MUST(at < calls.size() && calls[at].name == name);
        return calls[at++];
    }

    unsigned int Now() { return Take("clock").number; }

    bool Sends(const std::string& bytes, unsigned int host, unsigned int to) {
        const Call& call = Take("send");
        MUST(call.bytes == bytes && call.host == host && call.port == to);
        return call.result == static_cast<long>(bytes.size());
    }

    static std::string Number(unsigned int number) {
        return std::string(1, static_cast<char>(number >> 8)) + static_cast<char>(number);
    }
    static unsigned int NumberAt(const std::string& bytes, std::size_t place) {
        return static_cast<unsigned char>(bytes[place]) * 256u +
               static_cast<unsigned char>(bytes[place + 1]);
    }
    static std::string Error(unsigned int code, std::string message) {
        message.resize(30, '\0');
        return Number(5) + Number(code) + message;
    }

    void Acknowledge() { Sends(Number(4) + Number(last), server, port); }

    void Restart() { started = Now(); }

    // What is left of the time-out, after sending again when that is nothing.
    void Wait() {
        const unsigned int now = Now();
        unsigned int left = timeout - (now - started);
        if (now - started >= timeout) {
            started = now;
            timeout = timeout > 30000 ? 60000 : timeout * 2;
            left = timeout;
            if (request.empty()) {
                Acknowledge();
            } else {
                Sends(request, server, port);
            }
        }
        const Call& call = Take("select");
        MUST(call.number == left / 1000);
        if (call.result < 0) complaints += "select() failed (" + std::to_string(ENOMEM) + ") .\r\n";
        if (call.result == 0) complaints += "select() timeout  .\r\n";
    }

    bool Fail(unsigned int result, unsigned int& length) {
        length = result;
        Close();
        return false;
    }

    bool Violate(const Call& call, unsigned int& length) {
        Sends(Error(4, "Illegal Operation"), call.host, call.port);
        return Fail(0x814, length);
    }

    bool Accept(const Call& call, std::string& data, unsigned int& length) {
        Now();
        // Every wait of a read begins with a restart: no answer is ever a sample.
        if (last == 0) port = call.port;
        request.clear();
        ++last;
        Acknowledge();
        endOfFile = call.result < 516 ? 1 : 0;
        data = call.bytes.substr(4);
        length = static_cast<unsigned int>(data.size());
        return true;
    }

    const std::vector<Call>& calls;
    std::size_t at = 0;
    bool isOpen = false;
    std::string request;
    std::string text;
    std::string complaints;
    unsigned int port = 69;
    unsigned int last = 0;
    unsigned int endOfFile = 1;
    unsigned int timeout = 4000;
    unsigned int started = 0;
};

// Without what stands before: the source and a line number.
std::string WithoutPlaces(std::string printed) {
    for (std::size_t at = 0; (at = printed.find("(TqTftp, ", at)) != std::string::npos;) {
        printed.erase(at, printed.find("): ", at) + 3 - at);
    }
    return printed;
}

// A closed client, whatever was before: the first one of a process takes descriptor 0 for open.
void BeginClosed() {
    Input nothing(nullptr, 0);
    System system(nothing);
    TFTP_close();
}

/// The two clients side by side. The real one goes first, and then the plain one.
class Play {
public:
    explicit Play(Input& itsInput) : input(itsInput), system(itsInput), client(system.calls) {}

    void Run() {
        const std::string name = input.Text(20);
        const std::string mode = input.Below(2) == 0 ? "octet" : "netascii";
        TFTP_OPEN_STRUCT request = {htonl(server), name.c_str(), mode.c_str()};
        const unsigned int opened = TFTP_open(&request);
        MUST(opened == client.Open(name, mode));
        Tell(opened);
        Compare();
        for (int reads = 0; reads < 40 && !input.IsEmpty(); ++reads) Read();
        const unsigned int closed = TFTP_close();
        MUST(closed == client.Close());
        Compare();
        MUST(TFTP_close() == 0x704 && client.Close() == 0x704);
        Compare();
    }

private:
    void Read() {
        unsigned int length = 77;
        const unsigned char* const bytes = TFTP_read(&length);
        std::string data;
        unsigned int expected = 77;
        MUST((bytes != nullptr) == client.Read(data, expected));
        MUST(length == expected);
        MUST(bytes == nullptr || std::memcmp(bytes, data.data(), length) == 0);
        unsigned int textLength = 77;
        const unsigned char* const text = TFTP_error_text(&textLength);
        MUST(bytes != nullptr || client.ErrorText() == std::string(text, text + textLength));
        Tell(length);
        Compare();
    }

    void Compare() {
        MUST(client.HasEnded());
        MUST(TFTP_eof() == client.EndOfFile());
        printed += WithoutPlaces(Printed::Take());
        MUST(printed == client.Complaints());
        Tell(TFTP_eof());
    }

    Input& input;
    System system;
    Client client;
    std::string printed;
};

void Fuzz(Input& input) {
    BeginClosed();
    const Printed elsewhere;
    Play(input).Run();
    MUST(TakeReports() == 0);
}

const Target target("tftp", Fuzz);

template <class Function>
Function* Real(Function*, const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace Tftp

// In the place of the system's own: they serve the client while it is being played with.

#define REAL(name) static auto* const real = Tftp::Real(&::name, #name)

// Where a long is too short for late dates, what knows them has a name of its own in the C library.
#define REAL_WITH_TIME(name)  \
    static auto* const real = \
        Tftp::Real(&::name, sizeof(time_t) > sizeof(long) ? "__" #name "64" : #name)

extern "C" {

int socket(int domain, int type, int protocol) noexcept {
    REAL(socket);
    if (Tftp::System::present == nullptr) return real(domain, type, protocol);
    MUST(domain == AF_INET && type == SOCK_DGRAM && protocol == 0);
    return Tftp::System::present->Socket();
}

int bind(int where, const sockaddr* address, socklen_t length) noexcept {
    REAL(bind);
    if (Tftp::System::present == nullptr) return real(where, address, length);
    return Tftp::System::present->Bind(where);
}

int close(int where) {
    REAL(close);
    if (Tftp::System::present == nullptr) return real(where);
    return Tftp::System::present->Close(where);
}

int select(int count, fd_set* readable, fd_set* writable, fd_set* exceptional, timeval* wait) {
    REAL_WITH_TIME(select);
    if (Tftp::System::present == nullptr) return real(count, readable, writable, exceptional, wait);
    MUST(writable == nullptr && exceptional == nullptr);
    return Tftp::System::present->Select(count, readable, *wait);
}

ssize_t sendto(int where, const void* bytes, size_t count, int flags, const sockaddr* address,
               socklen_t length) {
    REAL(sendto);
    if (Tftp::System::present == nullptr) return real(where, bytes, count, flags, address, length);
    MUST(where == Tftp::descriptor && flags == 0 && length == sizeof(sockaddr_in));
    sockaddr_in to;
    std::memcpy(&to, address, sizeof to);
    const std::string sent(static_cast<const char*>(bytes), count);
    return Tftp::System::present->Send(sent, to);
}

ssize_t recvfrom(int where, void* bytes, size_t count, int flags, sockaddr* address,
                 socklen_t* length) {
    REAL(recvfrom);
    if (Tftp::System::present == nullptr) return real(where, bytes, count, flags, address, length);
    MUST(where == Tftp::descriptor && count == 516 && *length == sizeof(sockaddr_in));
    sockaddr_in from = sockaddr_in();
    const ssize_t received =
        Tftp::System::present->Receive(static_cast<unsigned char*>(bytes), from);
    std::memcpy(address, &from, sizeof from);
    return received;
}

int gettimeofday(timeval* now, void* zone) noexcept {
    REAL_WITH_TIME(gettimeofday);
    if (Tftp::System::present == nullptr) return real(now, zone);
    *now = Tftp::System::present->Time();
    return 0;
}
}
