// A lock. The thread that holds it may take it again; it is free after as many unlocks.
#pragma once

#include <mutex>

#include "foundations/port/ZelExport.h"

class QUINTOR_API CZelMutex {
public:
    CZelMutex() = default;
    CZelMutex(const CZelMutex &) = delete;
    CZelMutex &operator=(const CZelMutex &) = delete;

    void Lock() { m_mutex.lock(); }
    void Unlock() { m_mutex.unlock(); }

private:
    std::recursive_mutex m_mutex;
};

// Holds a mutex for a scope.
class QUINTOR_API CZelAutoMutex {
public:
    explicit CZelAutoMutex(CZelMutex &mutex) : m_mutex(mutex) { m_mutex.Lock(); }
    CZelAutoMutex(const CZelAutoMutex &) = delete;
    CZelAutoMutex &operator=(const CZelAutoMutex &) = delete;
    ~CZelAutoMutex() { m_mutex.Unlock(); }

private:
    CZelMutex &m_mutex;
};
