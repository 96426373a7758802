#ifndef TQ_LINUX_MUTEX_H
#define TQ_LINUX_MUTEX_H

#include <pthread.h>

#include "TqExport.h"

#ifdef __clang__
#define TQ_LOCK_ATTRIBUTE(attribute) __attribute__((attribute))
#else
#define TQ_LOCK_ATTRIBUTE(attribute)
#endif

/// The platform for tests: the reference mutex, but every call can be watched and made to fail.
/// The preset `faults` builds the library with this directory as its platform.
///
/// A call that is made to fail is carried out all the same and only its result is another: each
/// failure is then seen alone, without the failing unlock that a missed lock would bring along.
class TQ_API TQ_LOCK_ATTRIBUTE(capability("mutex")) TqLinuxMutex {
public:
    TqLinuxMutex();
    ~TqLinuxMutex();

    TqLinuxMutex(const TqLinuxMutex&) = delete;
    TqLinuxMutex& operator=(const TqLinuxMutex&) = delete;

    int Lock() TQ_LOCK_ATTRIBUTE(acquire_capability());
    int Unlock() TQ_LOCK_ATTRIBUTE(release_capability());

private:
    pthread_mutex_t mutex;
};

/// Told of each call of each mutex and of its true result; returns what the caller gets to see.
typedef int (*TqMutexWatch)(const TqLinuxMutex* mutex, bool isLock, int result);

/// Installs `watch`, or none when null. Not while another thread uses a mutex.
TQ_API void TqWatchMutexes(TqMutexWatch watch);

#endif
