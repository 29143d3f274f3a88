// A list element that holds one pointer, which it does not own.
#pragma once

#include "foundations/base/CZelListable.h"
#include "foundations/base/CZelPool.h"

class QUINTOR_API CZelPointer : public CZelListable {
public:
    ZEL_POOLED

    explicit CZelPointer(void *data = nullptr) : m_data(data) {}
    CZelListable *RLTargetDeepCopy(const CZelListable *source) const override;

    void *RPData() const { return m_data; }
    void RPSetData(void *data) { m_data = data; }

private:
    void *m_data;
};
