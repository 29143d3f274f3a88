#include "foundations/base/CZelHLEntry.h"

CZelListable *CZelHLEntry::RLTargetDeepCopy(const CZelListable *) const {
    return new CZelHLEntry(*this);
}
