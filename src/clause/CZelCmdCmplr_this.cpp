#include "clause/CZelCmdCmplr.h"
#include "foundations/base/CZelAtom.h"
#include "foundations/port/CZelError.h"

// References into the topology graph. No graph can be given yet, so every one finds none.
CZelAtom *CZelCmdCmplr::RCCEvaluateThis(int /*a*/, int /*b*/, const char * /*name*/, int /*c*/,
                                        const CZelAtomVector & /*path*/) {
    ZEL_REPORT(E_RCNotInTree, "graph not defined");
    return nullptr;
}
