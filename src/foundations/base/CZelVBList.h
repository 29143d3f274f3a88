// An ordered list of bindings, which it owns: the body of an object atom and of a record.
#pragma once

#include <cstdint>

#include "foundations/base/CZelPool.h"
#include "foundations/base/CZelVarBind.h"
#include "foundations/port/ZelCodes.h"
#include "foundations/port/ZelPrefetch.h"

class QUINTOR_API CZelVBList {
public:
    ZEL_POOLED

    CZelVBList() = default;
    CZelVBList(const CZelVBList &other);  // deep
    CZelVBList &operator=(const CZelVBList &) = delete;
    ~CZelVBList() { RVBLEmptyList(); }

    int RVBLAddToListEnd(CZelVarBind *binding) {  // takes over; 1, or E_RCBadArgument for null
        if (binding == nullptr)
            return E_RCBadArgument;
        binding->m_next = nullptr;
        (m_tail != nullptr ? m_tail->m_next : m_head) = binding;
        m_tail = binding;
        ++m_length;
        return E_RCOk;
    }

    CZelVarBind *RVBLHead() const { return m_head; }
    CZelVarBind *RVBLTail() const { return m_tail; }
    CZelVarBind *RVBLGetNext(const CZelVarBind *binding) const { return binding->m_next; }
    int RVBLLength() const { return m_length; }

    // The first binding of that name, or null. A name that is interned is found by address alone.
    CZelVarBind *RVBLFind(const CZelAtom &name) const {
        const CZelAtom *interned = CZelName::RNAtomOf(name);
        return interned != nullptr ? RVBLFindInterned(interned) : findText(name.RATextView());
    }
    CZelVarBind *RVBLFind(const char *name) const;
    CZelVarBind *RVBLFindInterned(const CZelAtom *name) const {  // an atom of CZelName
        CZelVarBind *binding = m_head;
        while (binding != nullptr && binding->m_name != name)
            binding = binding->m_next;
        return binding;
    }

    // Asks the memory for the first bindings at once: made together, they and short texts of their values mostly follow
    // each other.
    void RVBLPrefetch() const {
        constexpr std::size_t AHEAD = 320;  // bytes: ten bindings and texts
        ZelPrefetchLines(m_head, reinterpret_cast<const char *>(m_head) + AHEAD);
    }
    // And for what lies behind their values.
    void RVBLPrefetchValues() const {
        for (const CZelVarBind *binding = m_head; binding != nullptr; binding = binding->m_next)
            binding->m_value.RAPrefetch();
    }

    CZelVarBind *RVBLTakeHead();                 // unlinks it: the caller owns it; null when there is none
    int RVBLRemove(const CZelVarBind *binding);  // unlinks and deletes; 1 or E_RCNotFound
    void RVBLEmptyList();
    void RVBLMoveFrom(CZelVBList &other);  // appends all bindings of `other`, which is empty afterwards

    // Sorts in place, stable. The comparison gets pointers to CZelVarBind*, as with qsort.
    void RVBLSortList(int (*compare)(const void *, const void *));

private:
    CZelVarBind *findText(std::string_view name) const;

    CZelVarBind *m_head = nullptr;
    CZelVarBind *m_tail = nullptr;
    int m_length = 0;
};
