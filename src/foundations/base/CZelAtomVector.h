// A growable array of atoms that it owns: the body of a list atom. An entry may be null.
#pragma once

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelPool.h"
#include "foundations/port/ZelCodes.h"

class QUINTOR_API CZelAtomVector {
public:
    ZEL_POOLED

    explicit CZelAtomVector(unsigned int capacity = 0);
    CZelAtomVector(const CZelAtomVector &other);  // deep
    CZelAtomVector &operator=(const CZelAtomVector &) = delete;
    ~CZelAtomVector();  // deletes the entries, without deep recursion

    unsigned int RAVSize() const { return m_size; }
    const CZelAtom *RAVGetValue(unsigned int index) const { return index < m_size ? m_entries[index] : nullptr; }
    CZelAtom *RAVGetValue(unsigned int index) { return index < m_size ? m_entries[index] : nullptr; }
    CZelAtom *RAVGetLast() const { return m_size == 0 ? nullptr : m_entries[m_size - 1]; }

    int RAVAddToEnd(CZelAtom *atom) {  // takes over, null included; 1
        if (m_size == m_capacity)
            grow(m_size + 1);
        m_entries[m_size++] = atom;
        return E_RCOk;
    }
    int RAVAddToEnd(CZelAtomVector *other, bool flag);    // moves all in and deletes `other`; the flag is true
    int RAVSetValue(unsigned int index, CZelAtom *atom);  // takes over, deletes the old; grows with nulls
    CZelAtom *RAVRemoveAtom(unsigned int index);          // the caller owns it; later entries move down
    void RAVReset() { m_size = 0; }                       // forgets all entries without deleting them
    void RAVMakeSpace(unsigned int capacity);

    // Is a text among the entries?
    bool RAVHoldsText(const CZelAtom &text) const;

    // Sorts in place, stable; the comparison gets pointers to CZelAtom*, null means RALex order.
    void RAVSortVec(int (*compare)(const void *, const void *));

private:
    void grow(unsigned int needed);
    std::size_t entriesSize() const { return std::size_t{m_capacity} * sizeof(void *); }  // bytes

    CZelAtom **m_entries = nullptr;
    unsigned int m_size = 0;
    unsigned int m_capacity = 0;
};
