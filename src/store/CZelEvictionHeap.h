// The records of a cache that are in memory, the one that leaves it first on top: the lowest last access, of
// those the lowest reference count, of those the one that came first.
//
// An access only makes a record leave later, and happens far more often than a record leaves; so it is not told
// here. An entry that lies too high for its record is put right when it comes to the top. Only what makes a record
// leave earlier must be told at once.
//
// The records stay the cache's. Each knows its place here, so removing one takes no search.
#pragma once

#include <cstddef>
#include <vector>

#include "foundations/port/ZelExport.h"

class CZelCachedRecord;

class QUINTOR_API CZelEvictionHeap {
public:
    void add(CZelCachedRecord *record);
    void remove(CZelCachedRecord *record);  // nothing for one that is not here
    void leavesEarlier(CZelCachedRecord *record);
    CZelCachedRecord *first();  // stays here; null when there is none
    std::size_t length() const { return m_entries.size(); }
    const CZelCachedRecord *top() const {  // mostly the first; null when there is none
        return m_entries.empty() ? nullptr : m_entries.front().m_record;
    }
    const CZelCachedRecord &at(std::size_t place) const { return *m_entries[place].m_record; }  // in no order

private:
    struct Entry {
        long m_lastAccess;
        long m_refCount;
        unsigned long long m_arrival;
        CZelCachedRecord *m_record;
    };
    static Entry entryOf(CZelCachedRecord *record);
    static bool isBefore(const Entry &left, const Entry &right);
    void put(std::size_t place, const Entry &entry);
    void rise(std::size_t place, const Entry &entry);
    void sink(std::size_t place, const Entry &entry);
    std::size_t firstChild(std::size_t begin) const;

    std::vector<Entry> m_entries;  // a heap with four children to a node
};
