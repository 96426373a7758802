#ifndef TQ_PRIVATE_H
#define TQ_PRIVATE_H

// What the library's sources share among themselves.

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "../TqDataType.h"
#include "../TqHooks.h"

/// Says whom a source's reports are from, and makes `Report`, which gives them the line. A name and
/// no `__FILE__`: a report carries no path of the machine that built the library.
#define TQ_REPORTS_AS(name)                       \
    __attribute__((cold)) void Report(int line) { \
        TqCallAssert(name, line);                 \
    }

/// The same, for a source that may report in many places or in quick ones. Finding the name takes
/// instructions where code runs anywhere, which the compiler otherwise puts at the beginning of
/// whatever may report, for every caller to wait for.
#define TQ_REPORTS_APART_AS(name) __attribute__((noinline)) TQ_REPORTS_AS(name)

/// Reports a broken precondition and goes on.
#define TQ_REPORT_IF(broken)          \
    do {                              \
        if (broken) Report(__LINE__); \
    } while (0)

// Every value's destructor ends with this one, which does nothing: a call would take as long as the
// rest of it.
#if defined(__GNUC__) && !defined(__clang__) && !defined(TQ_DATA_TYPE_BODY)
inline __attribute__((gnu_inline)) TqDataType::~TqDataType() {}
#endif

/// Sets a field to zero in a destructor. Compilers drop ordinary stores into an object whose life
/// ends; handles and lists recognise a dead object by these, so they must reach the memory.
template <class T>
inline void TqClearForGood(T& field) {
    *const_cast<volatile T*>(&field) = T();
}

/// Makes what a destructor has assigned to fields of `object` reach the memory, for the same reason
/// and where the assignment itself is an operation's: link-time optimisation sees through those.
inline void TqKeepAssigned(const void* object) {
    __asm__ volatile("" : : "r"(object) : "memory");
}

/// `other` as a T, whatever it is. The value types report a value of another type and then go on as
/// though it were of their own: applications that mix related types count on the result.
template <class T>
TQ_READS_ANY_OBJECT inline const T& TqTakenAs(const TqDataType& other) {
    return static_cast<const T&>(other);
}

/// A field of `other` taken as a T. For a T that has relatives with another field in its place: a
/// sanitizer lets only this function read it.
template <class T, class Field>
TQ_READS_ANY_OBJECT inline Field TqFieldTakenAs(const TqDataType& other, Field T::*field) {
    return static_cast<const T&>(other).*field;
}

/// Marks what reads a shared field before it takes the lock, as the order of its checks demands:
/// the thread sanitizer must not take the read for a mistake.
#define TQ_READS_UNLOCKED __attribute__((no_sanitize("thread")))

/// Mark what takes a mutex for its caller, gives it back, or is called while it is held. A breach
/// is an error where clang compiles the library.
#ifdef TQ_CHECKS_LOCKS
#define TQ_TAKES(mutex) __attribute__((acquire_capability(mutex)))
#define TQ_GIVES_BACK(mutex) __attribute__((release_capability(mutex)))
#define TQ_NEEDS(mutex) __attribute__((requires_capability(mutex)))
#else
#define TQ_TAKES(mutex)
#define TQ_GIVES_BACK(mutex)
#define TQ_NEEDS(mutex)
#endif

/// A walk over a list: raises the list's `walkDepth` for as long as it lives. A callback, or what
/// else the walk calls, may leave it with an exception.
class TqWalk {
public:
    explicit TqWalk(unsigned int& walkDepth) : depth(walkDepth) { ++depth; }
    ~TqWalk() { --depth; }

    TqWalk(const TqWalk&) = delete;
    TqWalk& operator=(const TqWalk&) = delete;

private:
    unsigned int& depth;
};

/// a - b, wrapping around at 32 bits.
inline int TqWrappedDifference(int a, int b) {
    return static_cast<int>(static_cast<unsigned int>(a) - static_cast<unsigned int>(b));
}

/// Copies `count` bytes that may overlap; null pointers are fine when `count` is 0.
inline void TqCopyBytes(void* to, const void* from, std::size_t count) {
    if (count != 0) std::memmove(to, from, count);
}

/// Whether `pointer` points into the `size` bytes at `storage`.
inline bool TqLiesIn(const void* pointer, const void* storage, std::size_t size) {
    const std::uintptr_t address = reinterpret_cast<std::uintptr_t>(pointer);
    const std::uintptr_t start = reinterpret_cast<std::uintptr_t>(storage);
    return address >= start && address - start < size;
}

#endif
