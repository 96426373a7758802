#include "TqLinuxMutex.h"

namespace {

TqMutexWatch installed = nullptr;

int Watched(const TqLinuxMutex* mutex, bool isLock, int result) {
    return installed == nullptr ? result : installed(mutex, isLock, result);
}

}  // namespace

TqLinuxMutex::TqLinuxMutex() {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_ERRORCHECK);
    pthread_mutex_init(&mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
}

TqLinuxMutex::~TqLinuxMutex() {
    pthread_mutex_destroy(&mutex);
}

int TqLinuxMutex::Lock() {
    return Watched(this, true, pthread_mutex_lock(&mutex));
}

int TqLinuxMutex::Unlock() {
    return Watched(this, false, pthread_mutex_unlock(&mutex));
}

void TqWatchMutexes(TqMutexWatch watch) {
    installed = watch;
}
