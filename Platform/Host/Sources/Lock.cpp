// Lock.cpp: mutexes.

#include <Host/Host.h>

bool HostMutexInitialize(HostMutex* mutex, HostMutexKind kind) {
    if (!mutex)
        return false;
    if (kind == kHostMutexPlain)
        return pthread_mutex_init(mutex, nullptr) == 0;

    pthread_mutexattr_t attributes;
    if (pthread_mutexattr_init(&attributes) != 0)
        return false;
    const bool ready = pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE) == 0 &&
                       pthread_mutex_init(mutex, &attributes) == 0;
    pthread_mutexattr_destroy(&attributes);
    return ready;
}

void HostMutexDestroy(HostMutex* mutex) {
    if (mutex)
        pthread_mutex_destroy(mutex);
}

void HostMutexLock(HostMutex* mutex) {
    if (mutex)
        pthread_mutex_lock(mutex);
}

bool HostMutexTryLock(HostMutex* mutex) {
    return mutex && pthread_mutex_trylock(mutex) == 0;
}

void HostMutexUnlock(HostMutex* mutex) {
    if (mutex)
        pthread_mutex_unlock(mutex);
}
