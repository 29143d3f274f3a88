#include "store/CZelTblCallback.h"

CZelTblCallback::~CZelTblCallback() = default;

__boolean CZelTblCallback::RTCPrePreUpdate(CZelTable *, CZelRecord *, int, __boolean, CZelUpdate *) {
    return E_RBTrue;
}

__boolean CZelTblCallback::RTCPreDuplicate(CZelTable *, CZelRecord *, int, __boolean) {
    return E_RBTrue;
}

void CZelTblCallback::RTCPostDuplicate(CZelTable *, CZelRecord *, int, __boolean) {}
