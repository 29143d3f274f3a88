// A pointer kept with the key under which it was found.
#pragma once

#include "foundations/base/CZelPointer.h"

class CZelAtom;

class QUINTOR_API CZelHLEntry : public CZelPointer {
public:
    ZEL_POOLED

    // The key is referred to and outlives the entry.
    CZelHLEntry(const CZelAtom *key, void *data) : CZelPointer(data), m_key(key) {}
    CZelListable *RLTargetDeepCopy(const CZelListable *source) const override;

    const CZelAtom *RHLEKey() const { return m_key; }

private:
    const CZelAtom *m_key;
};
