#include "foundations/base/CZelPointer.h"

CZelListable *CZelPointer::RLTargetDeepCopy(const CZelListable *) const {
    return new CZelPointer(*this);
}
