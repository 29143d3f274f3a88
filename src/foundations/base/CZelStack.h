// A stack of pointers that it does not own, last in first out. A few entries lie in the stack itself, so
// that a short-lived one takes no memory.
#pragma once

#include "foundations/port/ZelExport.h"

class QUINTOR_API CZelStack {
public:
    explicit CZelStack(int limit);  // -1: no limit, which is what every caller passes
    CZelStack(const CZelStack &) = delete;
    CZelStack &operator=(const CZelStack &) = delete;
    virtual ~CZelStack();

    int RSPush(void *data);              // 1, or E_RCBadValue at the limit
    int RSPushBottom(void *data);        // adds at the other end: the last to be popped
    void *RSPop();                       // null when empty
    void *RSPeek(int fromBottom) const;  // an entry counted from the bottom, null outside
    int RSLength() const { return static_cast<int>(m_length); }

private:
    static constexpr unsigned int FEW = 8;

    bool isAtLimit() const { return m_limit >= 0 && m_length >= static_cast<unsigned int>(m_limit); }
    void *&entry(unsigned int fromBottom) const { return m_entries[(m_bottom + fromBottom) & (m_capacity - 1)]; }
    void makeSpace();

    int m_limit;
    unsigned int m_length = 0;
    unsigned int m_bottom = 0;      // where in the ring the lowest entry lies
    unsigned int m_capacity = FEW;  // a power of two
    void **m_entries = m_few;       // a ring
    void *m_few[FEW];
};
