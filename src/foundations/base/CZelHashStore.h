// A hash table from a text or an unsigned long to a pointer. It owns its keys, not the objects. Every number is
// a key, 0 and addresses included. A node is good until the store changes. A key of the other kind than the
// store's is E_RCBadArgument, and is never found.
//
// Threads: no lock; several readers may look up while nobody changes.
#pragma once

#include "foundations/base/CZelHashNode.h"
#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"

class CZelStack;

class QUINTOR_API CZelHashStore {
public:
    // `buckets` is the expected number of keys: the table starts at that size and grows. `numericKeys`
    // E_RBTrue: unsigned long keys. The last two are settings of growth that have no effect here.
    CZelHashStore(int buckets, __boolean numericKeys, __boolean grow, int limit);
    CZelHashStore(const CZelHashStore &) = delete;
    CZelHashStore &operator=(const CZelHashStore &) = delete;
    ~CZelHashStore();

    int RHSAddObjectAt(const char *key, void *object);  // 1 or E_RCDuplicate
    int RHSAddObjectAt(unsigned long key, void *object);
    CZelHashNode *RHSRetrieveObject(const char *key) const;  // null when absent
    CZelHashNode *RHSRetrieveObject(unsigned long key) const;
    int RHSDeleteObject(const char *key);  // 1 or E_RCNotInTree
    int RHSLength() const;

    // A new stack of all objects in no given order, the caller's; the store is empty afterwards and can be
    // filled again.
    CZelStack *RHSRetrieveAll();

private:
    struct Table;
    void freeKeys();
    int addAtZero(void *object);

    Table *m_table;
};
