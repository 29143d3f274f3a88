#include "foundations/base/CZelObjectSet.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "foundations/base/CZelBag.h"
#include "foundations/base/ZelHash.h"
#include "foundations/port/ZelPrefetch.h"

namespace {

std::size_t blockSize(std::uint32_t capacity, std::uint32_t places) {
    return capacity * sizeof(void *) + places * sizeof(std::uint32_t);
}

// A quarter of the places stays free at least.
std::uint32_t placesFor(std::uint32_t capacity) {
    return std::bit_ceil(capacity + capacity / 3 + 1);
}

std::uint32_t nextCapacity(std::uint32_t capacity) {
    constexpr std::uint32_t FIRST = 2;
    constexpr std::uint32_t LAST_TO_DOUBLE = 8;
    if (capacity == 0)
        return FIRST;
    return capacity <= LAST_TO_DOUBLE ? 2 * capacity : capacity + capacity / 2;
}

}  // namespace

CZelObjectSet::~CZelObjectSet() {
    dropList();
    CZelPool::RPGive(m_objects, blockSize(m_capacity, m_places));
}

// What stands in the place of a removed object: an address that no object has.
void *CZelObjectSet::gap() {
    static char mark;
    return &mark;
}

bool CZelObjectSet::add(void *object) {
    if (m_used == m_capacity) {
        if (holds(object))
            return false;
        makeSpace();
    }
    if (!(isIndexed() ? enter(object, m_used) : find(object) == NOWHERE))
        return false;
    dropList();
    append(object);
    return true;
}

void CZelObjectSet::addNew(void *object) {
    if (m_used == m_capacity)
        makeSpace();
    if (isIndexed())
        enter(object, m_used);
    append(object);
}

// Requires: there is room, and the index knows it.
void CZelObjectSet::append(void *object) {
    m_objects[m_used] = object;
    ++m_used;
    ++m_live;
}

// Closes the gaps if that gives room for a good while, else grows.
void CZelObjectSet::makeSpace() {
    bool manyGaps = m_used - m_live > m_capacity / 4;
    rebuild(manyGaps ? m_capacity : nextCapacity(m_capacity));
}

bool CZelObjectSet::remove(void *object) {
    std::uint32_t position = find(object);
    if (position == NOWHERE)
        return false;
    dropList();
    if (isIndexed())
        leave(findPlace(object, hashOf(object)));
    m_objects[position] = gap();
    --m_live;
    closeGaps();
    return true;
}

// Gaps at the end go at once, others when they are more than the objects.
void CZelObjectSet::closeGaps() {
    while (m_used != 0 && m_objects[m_used - 1] == gap())
        --m_used;
    bool sparse = m_used > 2 * m_live && m_used > MOST_UNINDEXED;
    if (sparse || m_capacity > 4 * nextCapacity(m_live))
        rebuild(nextCapacity(m_live));
}

void *CZelObjectSet::first() const {
    for (std::uint32_t i = 0; i < m_used; ++i) {
        if (m_objects[i] != gap())
            return m_objects[i];
    }
    return nullptr;
}

void CZelObjectSet::appendTo(CZelBag &bag) const {
    for (std::uint32_t i = 0; i < m_used; ++i) {
        if (m_objects[i] != gap())
            bag.RBAdd(m_objects[i]);
    }
}

CZelDoubleList *CZelObjectSet::list() const {
    CZelDoubleList *present = m_list.load(std::memory_order_acquire);
    if (present != nullptr)
        return present;
    CZelDoubleList *made = new CZelDoubleList;
    for (std::uint32_t i = 0; i < m_used; ++i) {
        if (m_objects[i] != gap())
            made->RDLAddToListEnd(new CZelPointer(m_objects[i]));
    }
    if (m_list.compare_exchange_strong(present, made, std::memory_order_acq_rel))
        return made;
    delete made;  // another reader was first
    return present;
}

void CZelObjectSet::dropList() {
    if (m_list.load(std::memory_order_relaxed) != nullptr)
        delete m_list.exchange(nullptr, std::memory_order_relaxed);
}

std::uint64_t CZelObjectSet::hashOf(const void *object) {
    return ZelHashWord(reinterpret_cast<std::uintptr_t>(object));
}

std::uint32_t CZelObjectSet::home(std::uint64_t hash) const {
    return static_cast<std::uint32_t>(hash >> 32) >> (std::countl_zero(m_places) + 1);
}

// The hash bits of an entry, where no position reaches. Those that `home` takes lie above them.
std::uint32_t CZelObjectSet::tagOf(std::uint64_t hash) const {
    return static_cast<std::uint32_t>(hash >> 8) & ~(m_places - 1);
}

std::uint32_t CZelObjectSet::positionIn(std::uint32_t entry) const {
    return (entry & (m_places - 1)) - 1;
}

// The place of an object in the index, or an empty one. Objects are looked at only where the bits of the hash agree.
std::uint32_t CZelObjectSet::findPlace(const void *object, std::uint64_t hash) const {
    const std::uint32_t *places = index();
    const std::uint32_t tag = tagOf(hash);
    std::uint32_t place = home(hash);
    while (places[place] != 0 &&
           ((places[place] & ~(m_places - 1)) != tag || m_objects[positionIn(places[place])] != object))
        place = after(place);
    return place;
}

// The position of an object in the array.
std::uint32_t CZelObjectSet::find(const void *object) const {
    if (isIndexed()) {
        const std::uint32_t entry = index()[findPlace(object, hashOf(object))];
        return entry == 0 ? NOWHERE : positionIn(entry);
    }
    for (std::uint32_t i = 0; i < m_used; ++i) {
        if (m_objects[i] == object)
            return i;
    }
    return NOWHERE;
}

void CZelObjectSet::prefetchPlace(const void *object) const {
    if (isIndexed())
        ZelPrefetch(index() + home(hashOf(object)));
}

// False when it is there.
bool CZelObjectSet::enter(const void *object, std::uint32_t position) {
    const std::uint64_t hash = hashOf(object);
    std::uint32_t &entry = index()[findPlace(object, hash)];
    if (entry != 0)
        return false;
    entry = tagOf(hash) | (position + 1);
    return true;
}

// Takes an entry out of the index and moves up those behind it that may stand there.
void CZelObjectSet::leave(std::uint32_t hole) {
    std::uint32_t *places = index();
    std::uint32_t mask = m_places - 1;
    for (std::uint32_t next = after(hole); places[next] != 0; next = after(next)) {
        std::uint32_t own = home(hashOf(m_objects[positionIn(places[next])]));
        if (((next - own) & mask) < ((next - hole) & mask))
            continue;
        places[hole] = places[next];
        hole = next;
    }
    places[hole] = 0;
}

// Moves the objects, without gaps, to a block of this capacity and makes the index anew.
void CZelObjectSet::rebuild(std::uint32_t capacity) {
    std::uint32_t places = capacity > MOST_UNINDEXED ? placesFor(capacity) : 0;
    void **block = static_cast<void **>(CZelPool::RPTake(blockSize(capacity, places)));
    std::remove_copy(m_objects, m_objects + m_used, block, gap());
    CZelPool::RPGive(m_objects, blockSize(m_capacity, m_places));
    m_objects = block;
    m_used = m_live;
    m_capacity = capacity;
    m_places = places;
    if (!isIndexed())
        return;
    std::memset(index(), 0, m_places * sizeof(std::uint32_t));
    for (std::uint32_t i = 0; i < m_used; ++i)
        enter(m_objects[i], i);
}
