#include "TqDownload.h"

#include <fcntl.h>
#include <linux/filter.h>
#include <netdb.h>
#include <netinet/in.h>
#include <pthread.h>
#include <signal.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <memory>

#include "TqTftp.h"
#include "TqTftpText.h"

namespace {

const unsigned int mostBlocks = 65535;
const unsigned int blockSize = 512;

// All times are milliseconds. How long the caller's thread waits before it looks around:
const int lookAround = 200;

// The client blocks in its receive once its time-out has run out, and sends again only when
// something interrupts the receive. Nothing needs to before the shortest time-out, 4 seconds, is
// over; and whatever interrupts its wait before the receive makes it print a line. That wait may
// take all of the 4 seconds, and begins a little after this side has begun to count.
const long long beforeFirstTick = 4500;
const long long betweenTicks = 1000;

const int betweenStops = 5;

// For how long blocks may gather before they are handed on.
const int gathering = 5;

// Ignored where nobody handles it, so that one too many does no harm.
const int tickSignal = SIGURG;

long long Now() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000LL + now.tv_nsec / 1000000;
}

// What two threads share: the one that fetches, which never waits for long, and the other one. Each
// has a condition of its own to wait for, which cannot wake the wrong one.
class Monitor {
public:
    class Lock {
    public:
        explicit Lock(Monitor& monitor) : mutex(monitor.mutex) { pthread_mutex_lock(&mutex); }
        ~Lock() { pthread_mutex_unlock(&mutex); }
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

    private:
        pthread_mutex_t& mutex;
    };

    Monitor() {
        pthread_mutex_init(&mutex, nullptr);
        pthread_condattr_t attributes;
        pthread_condattr_init(&attributes);
        pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
        pthread_cond_init(&forFetching, &attributes);
        pthread_cond_init(&forOther, &attributes);
        pthread_condattr_destroy(&attributes);
    }
    ~Monitor() {
        pthread_cond_destroy(&forFetching);
        pthread_cond_destroy(&forOther);
        pthread_mutex_destroy(&mutex);
    }
    Monitor(const Monitor&) = delete;
    Monitor& operator=(const Monitor&) = delete;

    // The rest while locked.

    void WakeFetching() { pthread_cond_signal(&forFetching); }
    void WakeOther() { pthread_cond_signal(&forOther); }
    void AwaitFetching() { pthread_cond_wait(&forOther, &mutex); }

    // Waits until `isSo`, for so long at most. Returns whether it is.
    template <class Condition>
    bool AwaitOther(int milliseconds, Condition isSo) {
        const long long end = Now() + milliseconds;
        timespec until = timespec();
        until.tv_sec = static_cast<time_t>(end / 1000);
        until.tv_nsec = static_cast<long>(end % 1000 * 1000000);
        while (!isSo() && pthread_cond_timedwait(&forFetching, &mutex, &until) == 0) {
        }
        return isSo();
    }

private:
    pthread_mutex_t mutex;
    pthread_cond_t forFetching;
    pthread_cond_t forOther;
};

// The blocks that the client's thread has read and the fetching one has not taken. A few at a time
// change hands: to wake the other one takes as long as to read a block.
class BlockQueue {
public:
    BlockQueue() {}
    BlockQueue(const BlockQueue&) = delete;
    BlockQueue& operator=(const BlockQueue&) = delete;

    // The client's thread. False when it is to stop.
    bool Put(const unsigned char* block, unsigned int length) {
        const Monitor::Lock lock(monitor);
        while (count == most && !isStopping) monitor.AwaitFetching();
        if (isStopping) return false;
        std::memcpy(blocks[filled][count], block, length);
        lastLength = length;
        ++count;
        if (isAwaited || count >= most / 2) monitor.WakeFetching();
        return true;
    }

    void End() {
        const Monitor::Lock lock(monitor);
        hasEnded = true;
        monitor.WakeFetching();
    }

    // The fetching thread. What has come: so many blocks, all of which but the last are full. Waits
    // for them, for so long at most, or for the end. They stay until the next call.
    struct Taken {
        const unsigned char (*blocks)[blockSize];
        unsigned int count;
        unsigned int lastLength;
        bool areLast;
    };

    Taken Take(int milliseconds) {
        const Monitor::Lock lock(monitor);
        const int moment = milliseconds < gathering ? milliseconds : gathering;
        monitor.AwaitOther(moment, [this] { return count >= most / 2 || hasEnded; });
        isAwaited = true;
        monitor.AwaitOther(milliseconds - moment, [this] { return count > 0 || hasEnded; });
        isAwaited = false;
        const Taken taken = {blocks[filled], count, lastLength, hasEnded};
        filled = 1 - filled;
        count = 0;
        monitor.WakeOther();
        return taken;
    }

    void Stop() {
        const Monitor::Lock lock(monitor);
        isStopping = true;
        monitor.WakeOther();
    }

    bool AwaitEnd(int milliseconds) {
        const Monitor::Lock lock(monitor);
        return monitor.AwaitOther(milliseconds, [this] { return hasEnded; });
    }

private:
    static const unsigned int most = 16;

    Monitor monitor;
    unsigned char blocks[2][most][blockSize];
    unsigned int filled = 0;  // which of the two the client's thread fills
    unsigned int count = 0;
    unsigned int lastLength = 0;
    bool isAwaited = false;  // the fetching thread waits for a single block
    bool isStopping = false;
    bool hasEnded = false;
};

// Starts a thread that the program's signals do not reach, but those of its own faults. Returns 0
// or an error number.
int StartThread(pthread_t& thread, void* (*function)(void*), void* argument) {
    sigset_t blocked;
    sigset_t before;
    sigfillset(&blocked);
    for (const int number : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, tickSignal}) {
        sigdelset(&blocked, number);
    }
    pthread_sigmask(SIG_SETMASK, &blocked, &before);
    const int error = pthread_create(&thread, nullptr, function, argument);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return error;
}

// The address of a host, asked for in a thread that nobody can interrupt: who has waited long
// enough leaves it behind, and the last one clears up.
class Lookup {
public:
    explicit Lookup(const char* server) : name(server) {}

    // Returns 0 or what getaddrinfo says.
    int Ask(int flags) {
        addrinfo wanted = addrinfo();
        wanted.ai_family = AF_INET;
        wanted.ai_socktype = SOCK_DGRAM;
        wanted.ai_flags = flags;
        addrinfo* found = nullptr;
        error = getaddrinfo(name.data, nullptr, &wanted, &found);
        systemError = errno;
        if (error != 0) return error;
        sockaddr_in first;
        std::memcpy(&first, found->ai_addr, sizeof first);
        address = first.sin_addr.s_addr;
        freeaddrinfo(found);
        return 0;
    }

    // What a thread gets: a pointer of its own, which it deletes.
    typedef std::shared_ptr<Lookup> Holder;

    static void* Run(void* holder) {
        const std::unique_ptr<Holder> own(static_cast<Holder*>(holder));
        (*own)->Ask(0);
        (*own)->SetDone();
        return nullptr;
    }

    bool AwaitAnswer(int milliseconds) {
        const Monitor::Lock lock(monitor);
        return monitor.AwaitOther(milliseconds, [this] { return isDone; });
    }

    const char* Problem() const {
        return error == EAI_SYSTEM ? std::strerror(systemError) : gai_strerror(error);
    }

    unsigned int address = 0;
    int error = 0;

private:
    void SetDone() {
        const Monitor::Lock lock(monitor);
        isDone = true;
        monitor.WakeFetching();
    }

    const TqString name;
    int systemError = 0;
    Monitor monitor;
    bool isDone = false;
};

// The client's socket is found by what is new among the descriptors after it was opened: the client
// tells nobody its number, and other threads may open descriptors at the same time.
struct Sockets {
    ino_t number[FD_SETSIZE];  // 0 where there is none of the client's kind
};

bool IsLikeTheClients(int descriptor) {
    sockaddr_in own = sockaddr_in();
    sockaddr_in peer;
    socklen_t length = sizeof own;
    if (getsockname(descriptor, reinterpret_cast<sockaddr*>(&own), &length) != 0) return false;
    if (own.sin_family != AF_INET || own.sin_addr.s_addr != htonl(INADDR_ANY)) return false;
    int type = 0;
    length = sizeof type;
    getsockopt(descriptor, SOL_SOCKET, SO_TYPE, &type, &length);
    length = sizeof peer;
    return type == SOCK_DGRAM && own.sin_port != 0 &&
           getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &length) != 0;
}

ino_t SocketNumber(int descriptor) {
    struct stat status;
    if (!IsLikeTheClients(descriptor) || fstat(descriptor, &status) != 0) return 0;
    return status.st_ino;
}

void Look(Sockets& sockets) {
    for (int i = 0; i < FD_SETSIZE; ++i) sockets.number[i] = SocketNumber(i);
}

// The one socket that was not there before; -1 when there are several.
int OnlyNewOne(const Sockets& before) {
    int found = -1;
    for (int i = 0; i < FD_SETSIZE; ++i) {
        const ino_t number = SocketNumber(i);
        if (number == 0 || number == before.number[i]) continue;
        if (found >= 0) return -1;
        found = i;
    }
    return found;
}

// Where a download goes: into a file beside the one that it is to replace, which is gone again when
// it was not kept, or into what is no plain file.
class Target {
public:
    explicit Target(const char* wanted)
        : path(wanted), isPlain(IsPlain(wanted)), own(wanted), file(nullptr) {
        if (!isPlain) {
            file = std::fopen(path, "we");
            return;
        }
        // What an earlier fetch left there may be a link of somebody else's as well, who wants a
        // file overwritten: never written to, and not found again when it is made anew.
        own += ".part";
        unlink(own.data);
        file = std::fopen(own.data, "wxe");
    }
    ~Target() {
        if (file == nullptr) return;
        std::fclose(file);
        if (isPlain && !isKept) std::remove(own.data);
    }
    Target(const Target&) = delete;
    Target& operator=(const Target&) = delete;

    bool IsOpen() const { return file != nullptr; }

    bool Write(const unsigned char* bytes, unsigned int count) {
        return std::fwrite(bytes, 1, count, file) == count;
    }

    // Whether all that was written has arrived; on the disk, if it is one.
    bool Keep() {
        isKept = std::fflush(file) == 0 &&
                 (!isPlain || (fsync(fileno(file)) == 0 && std::rename(own.data, path) == 0));
        return isKept;
    }

private:
    static bool IsPlain(const char* path) {
        struct stat status;
        return stat(path, &status) != 0 || S_ISREG(status.st_mode);
    }

    const char* const path;
    const bool isPlain;
    TqString own;
    std::FILE* file;
    bool isKept = false;
};

// What is appended to a buffer, and taken back again unless it was kept.
class Addition {
public:
    explicit Addition(TqBuffer& changed)
        : buffer(changed), length(changed.length), position(changed.readPosition) {}
    ~Addition() {
        if (isKept) return;
        buffer.TruncateAfter(length);
        buffer.readPosition = position;
    }
    Addition(const Addition&) = delete;
    Addition& operator=(const Addition&) = delete;

    void Keep() { isKept = true; }

private:
    TqBuffer& buffer;
    const unsigned int length;
    const unsigned int position;
    bool isKept = false;
};

void OnTick(int) {}

// While it lives, the signal interrupts what blocks.
class TickHandler {
public:
    TickHandler() {
        struct sigaction action = {};
        action.sa_handler = OnTick;  // without SA_RESTART, or the receive would go on
        sigaction(tickSignal, &action, &before);
    }
    ~TickHandler() { sigaction(tickSignal, &before, nullptr); }
    TickHandler(const TickHandler&) = delete;
    TickHandler& operator=(const TickHandler&) = delete;

private:
    struct sigaction before;
};

// The client has one transfer at a time. Whoever fetches has the turn.
std::atomic<bool> isTurnTaken(false);
thread_local bool hasTurn = false;

class Turn {
public:
    Turn() { hasTurn = true; }
    ~Turn() {
        hasTurn = false;
        isTurnTaken = false;
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
};

}  // namespace

// One transfer of the client in a thread of its own.
class TqDownload::Transfer {
public:
    explicit Transfer(const TFTP_OPEN_STRUCT& wanted) : request(wanted) {}

    // However the caller leaves: neither thread nor client goes on.
    ~Transfer() {
        if (isStarted) Stop();
        if (ownDescriptor >= 0) close(ownDescriptor);
    }

    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;

    // Returns 0 or an error number.
    int Start() {
        const int error = StartThread(thread, Run, this);
        isStarted = error == 0;
        return error;
    }

    BlockQueue::Taken Take(int milliseconds) { return queue.Take(milliseconds); }

    // Interrupts the client, which sends again what is due.
    void Tick() { pthread_kill(thread, tickSignal); }

    // Ends the thread, which must have been started.
    void Stop() {
        queue.Stop();
        // The client comes out of a receive only when that fails. Ticks get it there.
        while (!queue.AwaitEnd(betweenStops)) {
            Deafen();
            Tick();
        }
        pthread_join(thread, nullptr);
        isStarted = false;
    }

    unsigned int result = 0;
    int openError = 0;  // errno, where opening failed

private:
    static void* Run(void* transfer) {
        Transfer* own = static_cast<Transfer*>(transfer);
        own->result = own->Work();
        own->queue.End();
        return nullptr;
    }

    unsigned int Work() {
        const unsigned int opened = Open();
        if (opened != 0) return opened;
        while (TFTP_eof() == 0) {
            unsigned int length = 0;
            const unsigned char* const block = TFTP_read(&length);
            if (block == nullptr) return length;
            if (!queue.Put(block, length)) break;
        }
        TFTP_close();
        return 0;
    }

    // Opens the transfer, and its socket a second time. Where another thread has opened a socket
    // like it at the very same moment, all is begun anew.
    unsigned int Open() {
        for (int attempts = 3; attempts > 0; --attempts) {
            Sockets before;
            Look(before);
            errno = 0;
            const unsigned int opened = TFTP_open(&request);
            openError = errno;
            if (opened != 0) return opened;
            const int found = OnlyNewOne(before);
            if (found >= 0) return OpenAgain(found);
            TFTP_close();
        }
        openError = EBUSY;
        return TFTP_NO_SOCKET;
    }

    unsigned int OpenAgain(int descriptor) {
        ownDescriptor = fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
        openError = ownDescriptor < 0 ? errno : 0;
        if (ownDescriptor >= 0) return 0;
        TFTP_close();
        return TFTP_NO_SOCKET;
    }

    // Nothing comes to the client's socket any more, and once what has come is read, receiving
    // fails. It is done by a descriptor of this object's own: the client may have closed its one.
    void Deafen() {
        if (ownDescriptor < 0) return;
        sock_filter nothing = {BPF_RET | BPF_K, 0, 0, 0};
        const sock_fprog filter = {1, &nothing};
        setsockopt(ownDescriptor, SOL_SOCKET, SO_ATTACH_FILTER, &filter, sizeof filter);
        fcntl(ownDescriptor, F_SETFL, O_NONBLOCK);
    }

    TFTP_OPEN_STRUCT request;
    BlockQueue queue;
    const TickHandler handler;
    pthread_t thread = pthread_t();
    bool isStarted = false;
    std::atomic<int> ownDescriptor{-1};
};

TqDownload::TqDownload(const char* host, const char* name)
    : server(host),
      fileName(name),
      mode("octet"),
      patience(30),
      deadline(0),
      mostBytes(0),
      watch(nullptr),
      watchUser(nullptr),
      result(complete),
      bytes(0),
      address(0),
      begun(0),
      isCancelled(false) {}

void TqDownload::Cancel() {
    isCancelled = true;
}

unsigned int TqDownload::Begin() {
    begun = Now();
    bytes = 0;
    return End(complete, nullptr);
}

unsigned int TqDownload::End(unsigned int outcome, const char* reason) {
    words = reason;
    return result = outcome;
}

// Whether there is a reason to wait no longer, which is the result then. `since` is when there was
// news last.
bool TqDownload::IsOver(long long since) {
    const long long now = Now();
    if (isCancelled) {
        result = cancelled;
    } else if (deadline != 0 && now - begun >= deadline * 1000LL) {
        result = late;
    } else if (patience != 0 && now - since >= patience * 1000LL) {
        result = silent;
    } else {
        return false;
    }
    return true;
}

// How long to wait before looking around.
int TqDownload::TimeLeft(long long since) const {
    const long long now = Now();
    long long left = lookAround;
    if (deadline != 0 && begun + deadline * 1000LL - now < left) {
        left = begun + deadline * 1000LL - now;
    }
    if (patience != 0 && since + patience * 1000LL - now < left) {
        left = since + patience * 1000LL - now;
    }
    return left < 1 ? 1 : static_cast<int>(left);
}

void TqDownload::Watch(long long silence) const {
    if (watch != nullptr) watch(watchUser, bytes, static_cast<unsigned int>(silence));
}

unsigned int TqDownload::FindServer() {
    Begin();
    return AwaitAddress();
}

unsigned int TqDownload::AwaitAddress() {
    const Lookup::Holder lookup = std::make_shared<Lookup>(server.data);
    // An address in figures needs no thread, as nobody is asked.
    if (lookup->Ask(AI_NUMERICHOST) == 0) {
        address = lookup->address;
        return result;
    }
    std::unique_ptr<Lookup::Holder> threads(new Lookup::Holder(lookup));
    pthread_t thread;
    const int error = StartThread(thread, Lookup::Run, threads.get());
    if (error != 0) return End(noThread, std::strerror(error));
    static_cast<void>(threads.release());
    pthread_detach(thread);
    while (!lookup->AwaitAnswer(TimeLeft(begun))) {
        if (!IsOver(begun)) continue;
        return result == silent ? End(silent, "no answer from the name service") : result;
    }
    if (lookup->error != 0) return End(noServer, lookup->Problem());
    address = lookup->address;
    return result;
}

unsigned int TqDownload::AwaitTurn() {
    if (hasTurn) return End(nested, nullptr);
    while (isTurnTaken.exchange(true)) {
        // The other one's time is not this one's silence.
        if (IsOver(Now())) return result;
        const timespec pause = {0, TimeLeft(Now()) * 1000000L};
        nanosleep(&pause, nullptr);
    }
    return result;
}

unsigned int TqDownload::ToFunction(Receiver receive, void* user) {
    Begin();
    if (IsOver(begun)) return result;
    if (address == 0 && AwaitAddress() != complete) return result;
    if (AwaitTurn() != complete) return result;
    const Turn turn;
    return Fetch(receive, user);
}

unsigned int TqDownload::Fetch(Receiver receive, void* user) {
    const TFTP_OPEN_STRUCT request = {address, fileName.data, mode.data};
    Transfer transfer(request);
    const int error = transfer.Start();
    if (error != 0) return End(noThread, std::strerror(error));
    const unsigned int outcome = Receive(transfer, receive, user);
    transfer.Stop();
    if (outcome != transfer.result || outcome == complete) return result = outcome;
    if (transfer.openError != 0) return End(outcome, std::strerror(transfer.openError));
    unsigned int length = 0;
    const unsigned char* text = TFTP_error_text(&length);
    const char* const said = reinterpret_cast<const char*>(text);
    words.SetValue(said, static_cast<unsigned int>(strnlen(said, length)));
    return result = outcome;
}

// Hands over block after block. Returns what the transfer came to.
unsigned int TqDownload::Receive(Transfer& transfer, Receiver receive, void* user) {
    unsigned int blocks = 0;
    long long since = Now();
    long long nextTick = since + beforeFirstTick;
    while (true) {
        const BlockQueue::Taken taken = transfer.Take(TimeLeft(since));
        for (unsigned int i = 0; i < taken.count; ++i) {
            const unsigned int length = i + 1 < taken.count ? blockSize : taken.lastLength;
            if (Take(taken.blocks[i], length, receive, user) != complete) return result;
            ++blocks;
            since = Now();
            if (IsOver(since)) return result;
        }
        if (taken.areLast) break;
        if (taken.count > 0) {
            nextTick = since + beforeFirstTick;
            continue;
        }
        if (IsOver(since)) break;
        Watch(Now() - since + 1);
        if (Now() >= nextTick) {
            nextTick = Now() + betweenTicks;
            transfer.Tick();
        }
    }
    // After the last number, one more read has let the client tell the server.
    const unsigned int outcome = result == complete ? transfer.result : result;
    const bool isClients = outcome < cancelled || outcome == silent;
    return blocks == mostBlocks && outcome != complete && isClients ? tooLarge : outcome;
}

unsigned int TqDownload::Take(const unsigned char* block, unsigned int length, Receiver receive,
                              void* user) {
    if (mostBytes != 0 && bytes + length > mostBytes) return End(tooMany, nullptr);
    errno = 0;
    const bool isTaken = receive(user, block, length);
    if (!isTaken) return End(refused, errno == 0 ? nullptr : std::strerror(errno));
    bytes += length;
    Watch(0);
    return result;
}

unsigned int TqDownload::ToBuffer(TqBuffer& buffer) {
    Addition addition(buffer);
    auto append = [&buffer](const unsigned char* piece, unsigned int count) {
        buffer.Append(piece, count);
        return true;
    };
    if (ToFunction(append) == complete) addition.Keep();
    return result;
}

unsigned int TqDownload::ToFile(const char* path) {
    Begin();
    Target target(path);
    if (!target.IsOpen()) return End(refused, std::strerror(errno));
    auto write = [&target](const unsigned char* piece, unsigned int count) {
        return target.Write(piece, count);
    };
    if (ToFunction(write) == complete && !target.Keep()) End(refused, std::strerror(errno));
    return result;
}

// The server's words may hold anything; what a terminal might obey is not for people.
void TqDownload::AppendText(TqString& text) const {
    TqString shown(words);
    for (char* c = shown.data; *c != '\0'; ++c) {
        if (*c < ' ' || *c > '~') *c = '?';
    }
    text += TqTftpText(result, shown.data, result == late ? deadline : patience).data;
}
