// A hash table from unsigned long to CZelPointer nodes, which it owns; several nodes may share a key.
#pragma once

#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/CZelPointer.h"
#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"

class QUINTOR_API CZelHashList {
public:
    CZelHashList(int buckets, __boolean flag, int limit);  // sizes to start from; the table grows
    CZelHashList(const CZelHashList &) = delete;
    CZelHashList &operator=(const CZelHashList &) = delete;
    ~CZelHashList();

    int RHLAdd(unsigned long key, CZelPointer *node);     // takes over; 1 or E_RCBadArgument
    CZelPointer *RHLGet(unsigned long key) const;         // the first added under the key, or null
    int RHLDelete(unsigned long key);                     // every node of the key; 1 or E_RCNotInTree
    int RHLDelete(unsigned long key, CZelPointer *node);  // that very node
    CZelDoubleList *RHLIterator() { return &m_nodes; }    // all nodes, oldest first
    int RHLLength() const { return m_nodes.RDLLength(); }

private:
    struct Table;
    Table *m_table;
    CZelDoubleList m_nodes;
};
