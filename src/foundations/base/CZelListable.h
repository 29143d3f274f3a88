// The base of everything that can stand in a CZelDoubleList: it carries the links.
#pragma once

#include "foundations/port/ZelExport.h"

class QUINTOR_API CZelListable {
public:
    CZelListable() = default;
    CZelListable(const CZelListable &) {}  // links are not copied
    CZelListable &operator=(const CZelListable &) { return *this; }
    virtual ~CZelListable() = default;

    // A new element that copies this one. `source` is this element itself.
    virtual CZelListable *RLTargetDeepCopy(const CZelListable *source) const = 0;

private:
    friend class CZelBag;
    friend class CZelDoubleList;
    CZelListable *m_next = nullptr;
    CZelListable *m_prev = nullptr;
};
