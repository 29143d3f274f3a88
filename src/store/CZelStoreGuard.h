// Holds the lock of a store, or of a cached table, for a scope: as writer, as reader, or not at all when the caller
// holds it already.
#pragma once

#include "foundations/port/CZelRWLock.h"

class CZelStoreGuard {
public:
    enum Mode { NONE, READER, WRITER };

    CZelStoreGuard(CZelRWLock &lock, Mode mode) : m_lock(lock), m_held(take(lock, mode)) {}
    CZelStoreGuard(const CZelStoreGuard &) = delete;
    CZelStoreGuard &operator=(const CZelStoreGuard &) = delete;
    ~CZelStoreGuard() { release(); }

    void release() {
        if (m_held)
            m_lock.RRWLUnLock();
        m_held = false;
    }

private:
    static bool take(CZelRWLock &lock, Mode mode) {
        if (mode == NONE)
            return false;
        return (mode == WRITER ? lock.RRWLWriterLock() : lock.RRWLReaderLock()) == 1;
    }

    CZelRWLock &m_lock;
    bool m_held;
};
