#include "SystemCalls.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <netdb.h>
#include <pthread.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>

#include "Sanitizers.h"

#if defined(TQ_ADDRESS_SANITIZED) || defined(TQ_THREAD_SANITIZED)
#define TQ_SANITIZED 1
#endif

SystemCalls systemCalls;

namespace {

template <class Function>
Function* Real(Function*, const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

#define REAL(name) static auto* const real = Real(&::name, #name)

// Where a long is too short for late dates, what knows them has a name of its own in the C library.
const bool timesAreLong = sizeof(time_t) > sizeof(long);

#define REAL_WITH_TIME(name) \
    static auto* const real = Real(&::name, timesAreLong ? "__" #name "64" : #name)

// Which call is to fail; plain data, since the heap is used before anything is constructed.
std::atomic<unsigned int> failing;
std::atomic<bool> laterFail;
std::atomic<unsigned int> callsMade;
std::atomic<const char*> failed;

// Counts the call, and says whether it is to fail. Then `errno` is what it is given.
bool Fails(const char* name, int error) {
    const unsigned int wanted = failing;
    if (wanted == 0) return false;
    const unsigned int number = ++callsMade;
    const char* first = nullptr;
    if (number == wanted) failed.compare_exchange_strong(first, name);
    first = failed;
    if (number < wanted || (number > wanted && !laterFail)) return false;
    if (first == nullptr || std::strcmp(first, name) != 0) return false;
    errno = error;
    return true;
}

// Within a replacement the real functions are called, and only there.
class Replacement {
public:
    Replacement() { ++depth; }
    ~Replacement() { --depth; }

    bool IsNested() const { return depth > 1; }

private:
    static thread_local int depth;
};

thread_local int Replacement::depth = 0;

}  // namespace

extern "C" {

int gettimeofday(timeval* now, void* zone) noexcept {
    REAL_WITH_TIME(gettimeofday);
    const Replacement replacement;
    if (!systemCalls.gettimeofday || replacement.IsNested()) return real(now, zone);
    *now = systemCalls.gettimeofday();
    return 0;
}

time_t time(time_t* now) noexcept {
    REAL_WITH_TIME(time);
    const Replacement replacement;
    const time_t told =
        !systemCalls.time || replacement.IsNested() ? real(nullptr) : systemCalls.time();
    if (now != nullptr) *now = told;
    return told;
}

int select(int count, fd_set* readable, fd_set* writable, fd_set* exceptional, timeval* wait) {
    REAL_WITH_TIME(select);
    const Replacement replacement;
    if (Fails("select", ENOMEM)) return -1;
    if (!systemCalls.select || replacement.IsNested()) {
        return real(count, readable, writable, exceptional, wait);
    }
    return systemCalls.select(count, readable, wait);
}

int bind(int descriptor, const sockaddr* address, socklen_t length) noexcept {
    REAL(bind);
    const Replacement replacement;
    if (Fails("bind", EADDRINUSE)) return -1;
    if (!systemCalls.bind || replacement.IsNested()) return real(descriptor, address, length);
    return systemCalls.bind(descriptor, address, length);
}

ssize_t sendto(int descriptor, const void* bytes, size_t length, int flags, const sockaddr* address,
               socklen_t addressLength) {
    REAL(sendto);
    const Replacement replacement;
    if (Fails("sendto", ENETUNREACH)) return -1;
    if (!systemCalls.sendto || replacement.IsNested()) {
        return real(descriptor, bytes, length, flags, address, addressLength);
    }
    return systemCalls.sendto(descriptor, bytes, length, flags, address, addressLength);
}

ssize_t recvfrom(int descriptor, void* bytes, size_t length, int flags, sockaddr* address,
                 socklen_t* addressLength) {
    REAL(recvfrom);
    const Replacement replacement;
    if (Fails("recvfrom", ECONNREFUSED)) return -1;
    if (!systemCalls.recvfrom || replacement.IsNested()) {
        return real(descriptor, bytes, length, flags, address, addressLength);
    }
    return systemCalls.recvfrom(descriptor, bytes, length, flags, address, addressLength);
}

int stat(const char* path, struct stat* status) noexcept {
    static auto* const real =
        Real<int(const char*, struct stat*)>(nullptr, timesAreLong ? "__stat64_time64" : "stat");
    const Replacement replacement;
    if (Fails("stat", EACCES)) return -1;
    if (!systemCalls.stat || replacement.IsNested()) return real(path, status);
    return systemCalls.stat(path, status);
}

int fsync(int descriptor) {
    REAL(fsync);
    const Replacement replacement;
    if (Fails("fsync", EIO)) return -1;
    if (!systemCalls.fsync || replacement.IsNested()) return real(descriptor);
    return systemCalls.fsync(descriptor);
}

int mkostemp(char* name, int flags) {
    static auto* const real = Real(&::mkostemp, "mkostemp64");
    const Replacement replacement;
    if (!systemCalls.mkostemp || replacement.IsNested()) return real(name, flags);
    return systemCalls.mkostemp(name, flags);
}

int linkat(int oldFolder, const char* oldName, int newFolder, const char* newName,
           int flags) noexcept {
    REAL(linkat);
    const Replacement replacement;
    if (!systemCalls.linkat || replacement.IsNested()) {
        return real(oldFolder, oldName, newFolder, newName, flags);
    }
    return systemCalls.linkat(oldFolder, oldName, newFolder, newName, flags);
}

int rename(const char* oldName, const char* newName) noexcept {
    REAL(rename);
    const Replacement replacement;
    if (Fails("rename", EROFS)) return -1;
    if (!systemCalls.rename || replacement.IsNested()) return real(oldName, newName);
    return systemCalls.rename(oldName, newName);
}

ssize_t write(int descriptor, const void* bytes, size_t length) {
    REAL(write);
    const Replacement replacement;
    if (!systemCalls.write || replacement.IsNested()) return real(descriptor, bytes, length);
    return systemCalls.write(descriptor, bytes, length);
}

int clock_gettime(clockid_t clock, timespec* now) noexcept {
    REAL_WITH_TIME(clock_gettime);
    const Replacement replacement;
    if (!systemCalls.clock_gettime || replacement.IsNested()) return real(clock, now);
    *now = systemCalls.clock_gettime();
    return 0;
}

#if defined(__USE_TIME_BITS64) && __TIMESIZE == 32
// The clocks of the C++ library ask for the time in the short form.
struct ShortTime {
    long seconds;
    long nanoseconds;
};

int ShortClockGettime(clockid_t clock, ShortTime* now) noexcept __asm__("clock_gettime");
int ShortClockGettime(clockid_t clock, ShortTime* now) noexcept {
    timespec time;
    const int result = clock_gettime(clock, &time);
    now->seconds = static_cast<long>(time.tv_sec);
    now->nanoseconds = static_cast<long>(time.tv_nsec);
    return result;
}
#endif

#ifndef TQ_SANITIZED

// What no test replaces, but some have fail. Sanitizers have their own versions of these.

int socket(int domain, int type, int protocol) noexcept {
    REAL(socket);
    return Fails("socket", EMFILE) ? -1 : real(domain, type, protocol);
}

int close(int descriptor) {
    REAL(close);
    const int result = real(descriptor);
    return result == 0 && Fails("close", EIO) ? -1 : result;
}

FILE* fopen(const char* name, const char* mode) {
    static auto* const real = Real(&::fopen, "fopen64");
    return Fails("fopen", EMFILE) ? nullptr : real(name, mode);
}

int fclose(FILE* stream) {
    REAL(fclose);
    const int result = real(stream);
    return result == 0 && Fails("fclose", ENOSPC) ? EOF : result;
}

char* fgets(char* line, int size, FILE* stream) {
    REAL(fgets);
    char* const result = real(line, size, stream);
    return result != nullptr && Fails("fgets", EIO) ? nullptr : result;
}

size_t fwrite(const void* bytes, size_t size, size_t count, FILE* stream) {
    REAL(fwrite);
    return Fails("fwrite", ENOSPC) ? 0 : real(bytes, size, count, stream);
}

int fflush(FILE* stream) {
    REAL(fflush);
    return Fails("fflush", ENOSPC) ? EOF : real(stream);
}

int fstat(int descriptor, struct stat* status) noexcept {
    static auto* const real =
        Real<int(int, struct stat*)>(nullptr, timesAreLong ? "__fstat64_time64" : "fstat");
    const int result = real(descriptor, status);
    return result == 0 && Fails("fstat", EIO) ? -1 : result;
}

// All that is asked for here has a number for its argument, or none.
int fcntl(int descriptor, int command, ...) {
    static auto* const real =
        Real<int(int, int, ...)>(nullptr, timesAreLong ? "__fcntl_time64" : "fcntl64");
    va_list arguments;
    va_start(arguments, command);
    const long argument = va_arg(arguments, long);
    va_end(arguments);
    if (command == F_DUPFD_CLOEXEC && Fails("fcntl", EMFILE)) return -1;
    return real(descriptor, command, argument);
}

int getsockname(int descriptor, sockaddr* address, socklen_t* length) noexcept {
    REAL(getsockname);
    const int result = real(descriptor, address, length);
    return result == 0 && Fails("getsockname", ENOBUFS) ? -1 : result;
}

int setsockopt(int descriptor, int level, int name, const void* value, socklen_t size) noexcept {
    REAL_WITH_TIME(setsockopt);
    return Fails("setsockopt", ENOMEM) ? -1 : real(descriptor, level, name, value, size);
}

int getaddrinfo(const char* name, const char* service, const addrinfo* wanted, addrinfo** found) {
    REAL(getaddrinfo);
    return Fails("getaddrinfo", ENOMEM) ? EAI_MEMORY : real(name, service, wanted, found);
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*),
                   void* argument) noexcept {
    REAL(pthread_create);
    return Fails("pthread_create", EAGAIN) ? EAGAIN : real(thread, attributes, run, argument);
}

tm* gmtime_r(const time_t* moment, tm* result) noexcept {
    static auto* const real = Real(&::gmtime_r, timesAreLong ? "__gmtime64_r" : "gmtime_r");
    return Fails("gmtime_r", EOVERFLOW) ? nullptr : real(moment, result);
}

#endif

}  // extern "C"

void FailCall(unsigned int number, bool andLater) {
    failing = 0;
    callsMade = 0;
    failed = nullptr;
    laterFail = andLater;
    failing = number;
}

const char* FailedCall() {
    return failed;
}

#ifdef TQ_SANITIZED

const bool heapIsWatched = false;

unsigned int HeapCalls() {
    return 0;
}

void RefuseMemory(std::size_t) {}
void WatchMemory(std::size_t) {}

int WatchedBlocks() {
    return 0;
}

int LiveBlocks() {
    return 0;
}

#else

extern "C" void* __libc_malloc(std::size_t bytes);
extern "C" void* __libc_calloc(std::size_t count, std::size_t bytes);
extern "C" void* __libc_realloc(void* block, std::size_t bytes);
extern "C" void __libc_free(void* block);

// Valgrind has one of its own.
const bool heapIsWatched = std::getenv("TQ_RUNS_SLOWLY") == nullptr;

namespace {

// Plain data: the heap is used before anything is constructed. A size of 0 is none.
std::atomic<unsigned int> heapCalls;
std::atomic<int> liveBlocks;
std::size_t refusedSize;
std::size_t watchedSize;
void* watched[16];

bool Replace(void* block, void* by) {
    for (void*& slot : watched) {
        if (slot != block) continue;
        slot = by;
        return true;
    }
    return false;
}

}  // namespace

extern "C" void* malloc(std::size_t bytes) noexcept {
    ++heapCalls;
    if (bytes != 0 && bytes == refusedSize) return nullptr;
    if (Fails("memory", ENOMEM)) return nullptr;
    void* const block = __libc_malloc(bytes);
    if (bytes != 0 && bytes == watchedSize) Replace(nullptr, block);
    liveBlocks += block != nullptr ? 1 : 0;
    return block;
}

extern "C" void* calloc(std::size_t count, std::size_t bytes) noexcept {
    ++heapCalls;
    if (Fails("memory", ENOMEM)) return nullptr;
    void* const block = __libc_calloc(count, bytes);
    liveBlocks += block != nullptr ? 1 : 0;
    return block;
}

extern "C" void* realloc(void* block, std::size_t bytes) noexcept {
    ++heapCalls;
    if (Fails("memory", ENOMEM)) return nullptr;
    void* const resized = __libc_realloc(block, bytes);
    liveBlocks += block == nullptr && resized != nullptr ? 1 : 0;
    liveBlocks -= block != nullptr && bytes == 0 ? 1 : 0;
    return resized;
}

extern "C" void free(void* block) noexcept {
    if (block != nullptr && watchedSize != 0) Replace(block, nullptr);
    liveBlocks -= block != nullptr ? 1 : 0;
    __libc_free(block);
}

int LiveBlocks() {
    return liveBlocks;
}

unsigned int HeapCalls() {
    return heapCalls;
}

void RefuseMemory(std::size_t bytes) {
    refusedSize = bytes;
}

void WatchMemory(std::size_t bytes) {
    watchedSize = bytes;
    for (void*& slot : watched) slot = nullptr;
}

int WatchedBlocks() {
    int count = 0;
    for (const void* slot : watched) count += slot != nullptr ? 1 : 0;
    return count;
}

#endif
