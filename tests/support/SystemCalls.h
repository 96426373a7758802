#ifndef SYSTEM_CALLS_H
#define SYSTEM_CALLS_H

#include <sys/select.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <time.h>

#include <cstddef>
#include <ctime>
#include <functional>
#include <vector>

/// The system functions that a test may put in the place of those that the library and the parts of
/// the tools call. The test
/// program defines them itself, before the C library does, and hands every call on to the real one
/// unless a test has set a replacement. What a replacement calls itself is the real thing.
/// `systemCalls = SystemCalls()` takes all replacements out again.
struct SystemCalls {
    std::function<timeval()> gettimeofday;
    std::function<time_t()> time;
    std::function<int(int, fd_set*, timeval*)> select;
    std::function<int(int, const sockaddr*, socklen_t)> bind;
    std::function<ssize_t(int, const void*, std::size_t, int, const sockaddr*, socklen_t)> sendto;
    std::function<ssize_t(int, void*, std::size_t, int, sockaddr*, socklen_t*)> recvfrom;
    std::function<int(const char*, struct stat*)> stat;
    std::function<int(int)> fsync;
    std::function<int(char*, int)> mkostemp;
    std::function<int(int, const char*, int, const char*, int)> linkat;
    std::function<int(const char*, const char*)> rename;
    std::function<ssize_t(int, const void*, std::size_t)> write;
    std::function<timespec()> clock_gettime;
};

extern SystemCalls systemCalls;

/// Has calls into the system fail that the program makes from now on, on whatever thread: the one
/// of that number, counted from 1, or with `andLater` each from there on as well. 0 ends that. A
/// call fails as the system has it fail: with null, -1, an error number, fewer bytes. What a
/// failing close has closed is closed all the same. A call that fails anyway is not counted.
///
/// Only where `heapIsWatched`.
void FailCall(unsigned int number, bool andLater = false);

/// The name of the first call that failed since `FailCall`, or null; "memory" for all that ask for
/// it.
const char* FailedCall();

/// Sanitizers and valgrind bring their own heap; there this is false and what follows does nothing.
extern const bool heapIsWatched;

/// How many blocks there are.
int LiveBlocks();

/// How many blocks have been asked for or resized so far.
unsigned int HeapCalls();

/// From now on malloc finds no memory for exactly this many bytes; 0 for none.
void RefuseMemory(std::size_t bytes);

/// From now on counts the blocks of exactly this many bytes.
void WatchMemory(std::size_t bytes);
int WatchedBlocks();

#endif
