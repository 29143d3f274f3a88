// The objects under one crowded key: a set of pointers in the order in which they came. Adding, removing and
// asking for one take constant time; an object takes some 16 bytes.
//
// Objects stand in an array; a removed one leaves a gap, and gaps are closed when they are the greater part.
// A set of more than a few has behind the array an open-addressing table from object to position. The bits of an entry
// that no position of this set needs are bits of the object's hash, so that other objects are hardly ever looked at.
//
// Threads: no lock; several readers may read while nobody changes, also when they ask for the list.
#pragma once

#include <atomic>
#include <cstdint>

#include "foundations/base/CZelPool.h"

class CZelBag;
class CZelDoubleList;

class CZelObjectSet {
public:
    ZEL_POOLED

    // With room for so many.
    explicit CZelObjectSet(std::uint32_t capacity) { rebuild(capacity); }
    CZelObjectSet(const CZelObjectSet &) = delete;
    CZelObjectSet &operator=(const CZelObjectSet &) = delete;
    ~CZelObjectSet();

    bool add(void *object);     // false when it is there
    void addNew(void *object);  // Requires: it is not there, and nobody has asked for the list
    bool remove(void *object);  // false when it is not there
    bool holds(const void *object) const { return find(object) != NOWHERE; }
    void prefetchPlace(const void *object) const;  // asks the memory for what `add` will read
    unsigned int length() const { return m_live; }
    void *first() const;  // the oldest; null when empty
    void appendTo(CZelBag &bag) const;

    // The objects as CZelPointer, oldest first; the set's, good until it changes.
    CZelDoubleList *list() const;

private:
    static constexpr std::uint32_t NOWHERE = 0xFFFFFFFFU;
    static constexpr std::uint32_t MOST_UNINDEXED = 16;

    static void *gap();
    bool isIndexed() const { return m_places != 0; }
    std::uint32_t *index() const { return reinterpret_cast<std::uint32_t *>(m_objects + m_capacity); }
    static std::uint64_t hashOf(const void *object);
    std::uint32_t home(std::uint64_t hash) const;
    std::uint32_t after(std::uint32_t place) const { return (place + 1) & (m_places - 1); }
    std::uint32_t tagOf(std::uint64_t hash) const;
    std::uint32_t positionIn(std::uint32_t entry) const;
    std::uint32_t findPlace(const void *object, std::uint64_t hash) const;
    std::uint32_t find(const void *object) const;
    bool enter(const void *object, std::uint32_t position);
    void leave(std::uint32_t place);
    void rebuild(std::uint32_t capacity);
    void append(void *object);
    void makeSpace();
    void closeGaps();
    void dropList();

    void **m_objects = nullptr;  // m_capacity objects, then m_places entries: hash bits over a position + 1; 0: none
    std::uint32_t m_used = 0;    // objects and gaps
    std::uint32_t m_live = 0;    // objects
    std::uint32_t m_capacity = 0;
    std::uint32_t m_places = 0;                              // a power of two; 0 without an index
    mutable std::atomic<CZelDoubleList *> m_list = nullptr;  // made when asked for, dropped by a change
};
