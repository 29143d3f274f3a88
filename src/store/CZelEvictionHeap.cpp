#include "store/CZelEvictionHeap.h"

#include <algorithm>

#include "store/CZelCachedRecord.h"

namespace {

constexpr std::size_t CHILDREN = 4;

}  // namespace

CZelEvictionHeap::Entry CZelEvictionHeap::entryOf(CZelCachedRecord *record) {
    return {record->RCRGetLastAccess(), record->RCRGetRefCount(), record->RCRArrival(), record};
}

bool CZelEvictionHeap::isBefore(const Entry &left, const Entry &right) {
    if (left.m_lastAccess != right.m_lastAccess)
        return left.m_lastAccess < right.m_lastAccess;
    if (left.m_refCount != right.m_refCount)
        return left.m_refCount < right.m_refCount;
    return left.m_arrival < right.m_arrival;
}

void CZelEvictionHeap::add(CZelCachedRecord *record) {
    const Entry entry = entryOf(record);
    m_entries.push_back(entry);
    rise(m_entries.size() - 1, entry);
}

void CZelEvictionHeap::remove(CZelCachedRecord *record) {
    const std::size_t place = record->RCRHeapPlace();
    if (place == CZelCachedRecord::NO_PLACE)
        return;
    record->RCRSetHeapPlace(CZelCachedRecord::NO_PLACE);
    const Entry last = m_entries.back();
    m_entries.pop_back();
    if (place == m_entries.size())
        return;
    if (place > 0 && isBefore(last, m_entries[(place - 1) / CHILDREN]))
        rise(place, last);
    else
        sink(place, last);
}

void CZelEvictionHeap::leavesEarlier(CZelCachedRecord *record) {
    const std::size_t place = record->RCRHeapPlace();
    if (place == CZelCachedRecord::NO_PLACE)
        return;
    const Entry entry = entryOf(record);
    if (isBefore(entry, m_entries[place]))
        rise(place, entry);
}

CZelCachedRecord *CZelEvictionHeap::first() {
    while (!m_entries.empty()) {
        const Entry now = entryOf(m_entries.front().m_record);
        if (!isBefore(m_entries.front(), now))
            return now.m_record;
        sink(0, now);
    }
    return nullptr;
}

void CZelEvictionHeap::put(std::size_t place, const Entry &entry) {
    m_entries[place] = entry;
    entry.m_record->RCRSetHeapPlace(static_cast<unsigned int>(place));
}

void CZelEvictionHeap::rise(std::size_t place, const Entry &entry) {
    while (place > 0) {
        const std::size_t parent = (place - 1) / CHILDREN;
        if (!isBefore(entry, m_entries[parent]))
            break;
        put(place, m_entries[parent]);
        place = parent;
    }
    put(place, entry);
}

void CZelEvictionHeap::sink(std::size_t place, const Entry &entry) {
    for (std::size_t begin = CHILDREN * place + 1; begin < m_entries.size(); begin = CHILDREN * place + 1) {
        const std::size_t child = firstChild(begin);
        if (!isBefore(m_entries[child], entry))
            break;
        put(place, m_entries[child]);
        place = child;
    }
    put(place, entry);
}

std::size_t CZelEvictionHeap::firstChild(std::size_t begin) const {
    const std::size_t end = std::min(begin + CHILDREN, m_entries.size());
    std::size_t first = begin;
    for (std::size_t child = begin + 1; child < end; ++child) {
        if (isBefore(m_entries[child], m_entries[first]))
            first = child;
    }
    return first;
}
