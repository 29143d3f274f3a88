// Holds a store's lock as writer over several of its operations: nobody sees what lies between them, such as a
// table between its entry into the store and its coming to life.
#pragma once

#include "store/CZelStore.h"

class CZelStoreWholeOperation {
public:
    explicit CZelStoreWholeOperation(CZelStore &store) : m_store(store) { m_store.RSLock(); }
    CZelStoreWholeOperation(const CZelStoreWholeOperation &) = delete;
    CZelStoreWholeOperation &operator=(const CZelStoreWholeOperation &) = delete;
    ~CZelStoreWholeOperation() { m_store.RSUnlock(); }

private:
    CZelStore &m_store;
};
