#include "foundations/base/CZelVBList.h"

#include <algorithm>
#include <vector>

CZelVBList::CZelVBList(const CZelVBList &other) : m_length(other.m_length) {
    CZelVarBind **link = &m_head;
    for (const CZelVarBind *binding = other.m_head; binding != nullptr; binding = binding->m_next) {
        m_tail = new CZelVarBind(*binding);
        *link = m_tail;
        link = &m_tail->m_next;
    }
}

CZelVarBind *CZelVBList::RVBLFind(const char *name) const {
    return name == nullptr ? nullptr : findText(name);
}

// A name that was never interned can only be that of a binding whose own name is not interned.
CZelVarBind *CZelVBList::findText(std::string_view name) const {
    if (m_head == nullptr || name.data() == nullptr)
        return nullptr;
    const CZelAtom *interned = CZelName::RNFind(name.data(), name.size());
    if (interned != nullptr)
        return RVBLFindInterned(interned);
    CZelVarBind *binding = m_head;
    while (binding != nullptr && (binding->m_name->RAIsInterned() || binding->m_name->RATextView() != name))
        binding = binding->m_next;
    return binding;
}

CZelVarBind *CZelVBList::RVBLTakeHead() {
    CZelVarBind *head = m_head;
    if (head == nullptr)
        return nullptr;
    m_head = head->m_next;
    if (m_head == nullptr)
        m_tail = nullptr;
    --m_length;
    head->m_next = nullptr;
    return head;
}

int CZelVBList::RVBLRemove(const CZelVarBind *binding) {
    CZelVarBind *before = nullptr;
    CZelVarBind *found = m_head;
    while (found != nullptr && found != binding) {
        before = found;
        found = found->m_next;
    }
    if (found == nullptr)
        return E_RCNotFound;
    (before != nullptr ? before->m_next : m_head) = found->m_next;
    if (m_tail == found)
        m_tail = before;
    --m_length;
    delete found;
    return E_RCOk;
}

void CZelVBList::RVBLEmptyList() {
    CZelVarBind *binding = m_head;
    m_head = m_tail = nullptr;
    m_length = 0;
    while (binding != nullptr) {
        CZelVarBind *next = binding->m_next;
        delete binding;
        binding = next;
    }
}

void CZelVBList::RVBLMoveFrom(CZelVBList &other) {
    if (other.m_head == nullptr || &other == this)
        return;
    (m_tail != nullptr ? m_tail->m_next : m_head) = other.m_head;
    m_tail = other.m_tail;
    m_length += other.m_length;
    other.m_head = other.m_tail = nullptr;
    other.m_length = 0;
}

void CZelVBList::RVBLSortList(int (*compare)(const void *, const void *)) {
    std::vector<CZelVarBind *> bindings;
    bindings.reserve(static_cast<std::size_t>(m_length));
    for (CZelVarBind *binding = m_head; binding != nullptr; binding = binding->m_next)
        bindings.push_back(binding);
    std::stable_sort(bindings.begin(), bindings.end(),
                     [compare](CZelVarBind *left, CZelVarBind *right) { return compare(&left, &right) < 0; });
    m_head = m_tail = nullptr;
    m_length = 0;
    for (CZelVarBind *binding : bindings)
        RVBLAddToListEnd(binding);
}
