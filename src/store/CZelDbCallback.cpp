#include "store/CZelDbCallback.h"

#include "foundations/port/CZelError.h"

CZelDbCallback::CZelDbCallback() = default;
CZelDbCallback::~CZelDbCallback() = default;

__boolean CZelDbCallback::RDCPreAddTable(CZelDatabase *, CZelTable *) {
    return E_RBTrue;
}

void CZelDbCallback::RDCPostAddTable(CZelDatabase *, CZelTable *) {}

__boolean CZelDbCallback::RDCPreDropTable(CZelDatabase *, CZelTable *) {
    return E_RBTrue;
}

void CZelDbCallback::RDCPostDropTable(CZelDatabase *, CZelTable *) {}

void CZelDbCallback::RDCPreInitialise(CZelDatabase *) {}

void CZelDbCallback::RDCPreDestroy(CZelDatabase *) {}

__boolean CZelDbCallback::RDCCallbackOverridden(CZelDatabase *, CZelDbCallback *) {
    ZEL_REPORT(E_RCBadState, "Can not overriden default callback");
    return E_RBFalse;
}
