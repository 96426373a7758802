#ifndef TQ_LINUX_MUTEX_H
#define TQ_LINUX_MUTEX_H

#include <pthread.h>

/// Says that programs may compile `Lock` and `Unlock` in, too. A port defines it where these need
/// nothing but the C library; without it only the library calls them.
#define TQ_LINUX_MUTEX_INLINE

// Says to clang, which checks it when asked to (-Wthread-safety), what is a lock and who takes it.
#ifdef __clang__
#define TQ_LOCK_ATTRIBUTE(attribute) __attribute__((attribute))
#else
#define TQ_LOCK_ATTRIBUTE(attribute)
#endif

/// The mutex that the device supplies: the one thing the library asks of its platform. A device
/// build puts its own header of this name in its own directory and points `TQ_PLATFORM_DIR` at it;
/// README.md beside this file states what such a directory holds.
///
/// The contract: default constructor, destructor, and `Lock` and `Unlock` that return 0 on success
/// and anything else on failure. The library reports a failure and goes on. The mutex is never
/// copied.
///
/// This one is an error-checking POSIX mutex: a thread that locks it twice gets EDEADLK at once
/// instead of hanging, and one that unlocks what it does not hold gets EPERM.
class TQ_LOCK_ATTRIBUTE(capability("mutex")) TqLinuxMutex {
public:
    TqLinuxMutex();
    ~TqLinuxMutex() { pthread_mutex_destroy(&mutex); }

    TqLinuxMutex(const TqLinuxMutex&) = delete;
    TqLinuxMutex& operator=(const TqLinuxMutex&) = delete;

    /// Waits for the mutex. Returns 0, or an error number and the mutex is not taken.
    int Lock() TQ_LOCK_ATTRIBUTE(acquire_capability()) { return pthread_mutex_lock(&mutex); }

    /// Gives the mutex back. Returns 0, or an error number and nothing has changed.
    int Unlock() TQ_LOCK_ATTRIBUTE(release_capability()) { return pthread_mutex_unlock(&mutex); }

private:
    pthread_mutex_t mutex;
};

#ifdef PTHREAD_ERRORCHECK_MUTEX_INITIALIZER_NP

// Objects, handles and lists are made often: where the C library has it, its constant saves five
// calls for each.
inline TqLinuxMutex::TqLinuxMutex() : mutex(PTHREAD_ERRORCHECK_MUTEX_INITIALIZER_NP) {}

#else

inline TqLinuxMutex::TqLinuxMutex() {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_ERRORCHECK);
    pthread_mutex_init(&mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
}

#endif

#endif
