#include "foundations/base/CZelAtomVector.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "foundations/base/ZelMalloc.h"

CZelAtomVector::CZelAtomVector(unsigned int capacity) {
    RAVMakeSpace(capacity);
}

CZelAtomVector::CZelAtomVector(const CZelAtomVector &other) {
    RAVMakeSpace(other.m_size);
    for (; m_size < other.m_size; ++m_size) {
        const CZelAtom *atom = other.m_entries[m_size];
        m_entries[m_size] = atom == nullptr ? nullptr : new CZelAtom(*atom);
    }
}

// An atom defers what lies deep below it, so a long chain of lists in lists does not recurse here.
CZelAtomVector::~CZelAtomVector() {
    for (unsigned int i = 0; i < m_size; ++i)
        delete m_entries[i];
    CZelPool::RPGive(m_entries, entriesSize());
}

int CZelAtomVector::RAVAddToEnd(CZelAtomVector *other, bool) {
    if (other == nullptr || other == this)
        return E_RCBadArgument;
    if (other->m_size > m_capacity - m_size)
        grow(m_size + other->m_size);
    if (other->m_size != 0)
        std::memcpy(m_entries + m_size, other->m_entries, other->m_size * sizeof(void *));
    m_size += other->m_size;
    other->RAVReset();
    delete other;
    return E_RCOk;
}

int CZelAtomVector::RAVSetValue(unsigned int index, CZelAtom *atom) {
    if (index >= m_capacity)
        grow(index + 1);
    while (m_size <= index)
        m_entries[m_size++] = nullptr;
    if (m_entries[index] != atom)
        delete m_entries[index];
    m_entries[index] = atom;
    return E_RCOk;
}

CZelAtom *CZelAtomVector::RAVRemoveAtom(unsigned int index) {
    if (index >= m_size)
        return nullptr;
    CZelAtom *atom = m_entries[index];
    --m_size;
    std::memmove(m_entries + index, m_entries + index + 1, (m_size - index) * sizeof(void *));
    return atom;
}

// Short lists are many, so their entries come from the pool.
void CZelAtomVector::RAVMakeSpace(unsigned int capacity) {
    if (capacity <= m_capacity)
        return;
    const std::size_t size = std::size_t{capacity} * sizeof(void *);
    if (entriesSize() > CZelPool::LARGEST) {
        m_entries = static_cast<CZelAtom **>(ZelRealloc(m_entries, size));
    } else {
        auto **entries = static_cast<CZelAtom **>(CZelPool::RPTake(size));
        std::copy_n(m_entries, m_size, entries);
        CZelPool::RPGive(m_entries, entriesSize());
        m_entries = entries;
    }
    m_capacity = capacity;
}

// Doubles at least, so that appending one by one costs a constant each.
void CZelAtomVector::grow(unsigned int needed) {
    constexpr unsigned int FIRST = 4;
    constexpr unsigned int LARGEST_TO_DOUBLE = 1U << 31;
    unsigned int doubled = m_capacity < LARGEST_TO_DOUBLE ? 2 * m_capacity : needed;
    RAVMakeSpace(std::max({needed, doubled, FIRST}));
}

bool CZelAtomVector::RAVHoldsText(const CZelAtom &text) const {
    return std::any_of(m_entries, m_entries + m_size,
                       [&text](const CZelAtom *atom) { return atom != nullptr && atom->RASameText(text); });
}

void CZelAtomVector::RAVSortVec(int (*compare)(const void *, const void *)) {
    auto before = [compare](CZelAtom *left, CZelAtom *right) {
        return (compare == nullptr ? CZelAtom::RACompare(left, right) : compare(&left, &right)) < 0;
    };
    std::stable_sort(m_entries, m_entries + m_size, before);
}
