// A lock that is mostly held for a few instructions: who finds it taken looks again for a while before it sleeps, as to
// sleep and be woken takes far longer.
#pragma once

#include <pthread.h>

class CZelShortLock {
public:
    void lock() { pthread_mutex_lock(&m_mutex); }
    void unlock() { pthread_mutex_unlock(&m_mutex); }

private:
#ifdef PTHREAD_ADAPTIVE_MUTEX_INITIALIZER_NP
    pthread_mutex_t m_mutex = PTHREAD_ADAPTIVE_MUTEX_INITIALIZER_NP;
#else
    pthread_mutex_t m_mutex = PTHREAD_MUTEX_INITIALIZER;
#endif
};
