// A hash table from a text or an unsigned long to a pointer. It owns its keys, not the objects.
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

    // A new stack of all objects, the caller's; the store is empty afterwards.
    CZelStack *RHSRetrieveAll();

private:
    struct Table;
    Table *m_table;
};
