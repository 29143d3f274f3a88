#include "oql/CZelExit.h"

#include <csignal>

#include "foundations/base/ZelMalloc.h"
#include "foundations/port/ZelPort.h"

CZelExit::CZelExit() : CZelDbObject(E_DOExit) {}

int CZelExit::RDODestroy() {
    return 1;
}

int CZelExit::RDOInitialise(CZelStore * /*store*/) {
    return 1;
}

CZelBag *CZelExit::RDOCompilables() {
    return nullptr;
}

char *CZelExit::RDOAsString() {
    return ZelStrDup("shutdown;\n");
}

void CZelExit::REExit() {
    ZelSigSend(SIGTERM);
}
