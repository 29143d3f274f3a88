// A stack of pointers that it does not own, last in first out.
#pragma once

#include <deque>

#include "foundations/port/ZelExport.h"

class QUINTOR_API CZelStack {
public:
    explicit CZelStack(int limit);  // -1: no limit, which is what every caller passes
    virtual ~CZelStack();

    int RSPush(void *data);              // 1, or E_RCBadValue at the limit
    int RSPushBottom(void *data);        // adds at the other end: the last to be popped
    void *RSPop();                       // null when empty
    void *RSPeek(int fromBottom) const;  // an entry counted from the bottom, null outside
    int RSLength() const { return static_cast<int>(m_entries.size()); }

private:
    int m_limit;
    std::deque<void *> m_entries;  // the top is at the back
};
