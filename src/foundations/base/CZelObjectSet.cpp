#include "foundations/base/CZelObjectSet.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "foundations/base/CZelBag.h"
#include "foundations/base/ZelHash.h"

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
    if (holds(object))
        return false;
    dropList();
    addNew(object);
    return true;
}

void CZelObjectSet::addNew(void *object) {
    if (m_used == m_capacity)
        makeSpace();
    m_objects[m_used] = object;
    if (isIndexed())
        enter(m_used);
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
        leave(findPlace(object));
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
    delete m_list.exchange(nullptr, std::memory_order_relaxed);
}

std::uint32_t CZelObjectSet::home(const void *object) const {
    std::uint64_t hash = ZelHashWord(reinterpret_cast<std::uintptr_t>(object));
    return static_cast<std::uint32_t>(hash >> 32) >> (std::countl_zero(m_places) + 1);
}

// The place of an object in the index, or an empty one.
std::uint32_t CZelObjectSet::findPlace(const void *object) const {
    const std::uint32_t *places = index();
    std::uint32_t place = home(object);
    while (places[place] != 0 && m_objects[places[place] - 1] != object)
        place = after(place);
    return place;
}

// The position of an object in the array.
std::uint32_t CZelObjectSet::find(const void *object) const {
    if (isIndexed()) {
        std::uint32_t entry = index()[findPlace(object)];
        return entry == 0 ? NOWHERE : entry - 1;
    }
    for (std::uint32_t i = 0; i < m_used; ++i) {
        if (m_objects[i] == object)
            return i;
    }
    return NOWHERE;
}

void CZelObjectSet::enter(std::uint32_t position) {
    index()[findPlace(m_objects[position])] = position + 1;
}

// Takes an entry out of the index and moves up those behind it that may stand there.
void CZelObjectSet::leave(std::uint32_t hole) {
    std::uint32_t *places = index();
    std::uint32_t mask = m_places - 1;
    for (std::uint32_t next = after(hole); places[next] != 0; next = after(next)) {
        std::uint32_t own = home(m_objects[places[next] - 1]);
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
        enter(i);
}
