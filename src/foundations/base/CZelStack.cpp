#include "foundations/base/CZelStack.h"

#include <cstdlib>

#include "foundations/base/ZelMalloc.h"
#include "foundations/port/ZelCodes.h"

CZelStack::CZelStack(int limit) : m_limit(limit) {}

CZelStack::~CZelStack() {
    if (m_entries != m_few)
        std::free(m_entries);
}

int CZelStack::RSPush(void *data) {
    if (isAtLimit())
        return E_RCBadValue;
    makeSpace();
    entry(m_length++) = data;
    return E_RCOk;
}

int CZelStack::RSPushBottom(void *data) {
    if (isAtLimit())
        return E_RCBadValue;
    makeSpace();
    m_bottom = (m_bottom - 1) & (m_capacity - 1);
    ++m_length;
    entry(0) = data;
    return E_RCOk;
}

void *CZelStack::RSPop() {
    return m_length == 0 ? nullptr : entry(--m_length);
}

void *CZelStack::RSPeek(int fromBottom) const {
    if (fromBottom < 0 || static_cast<unsigned int>(fromBottom) >= m_length)
        return nullptr;
    return entry(static_cast<unsigned int>(fromBottom));
}

// Doubles a full ring, the bottom at its start.
void CZelStack::makeSpace() {
    if (m_length < m_capacity)
        return;
    void **larger = static_cast<void **>(ZelMalloc(2 * m_capacity * sizeof(void *)));
    for (unsigned int i = 0; i < m_length; ++i)
        larger[i] = entry(i);
    if (m_entries != m_few)
        std::free(m_entries);
    m_entries = larger;
    m_bottom = 0;
    m_capacity *= 2;
}
