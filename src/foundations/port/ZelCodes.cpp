#include "foundations/port/ZelCodes.h"

#define ZEL_NAME_CASE(code) \
    case code:              \
        return #code

const char *ZelCodeName(int code) {
    switch (code) {
        ZEL_NAME_CASE(E_RCOk);
        ZEL_NAME_CASE(E_RCBadArgument);
        ZEL_NAME_CASE(E_RCNoMemory);
        ZEL_NAME_CASE(E_RCNull);
        ZEL_NAME_CASE(E_RCBadValue);
        ZEL_NAME_CASE(E_RCBadState);
        ZEL_NAME_CASE(E_RCBadType);
        ZEL_NAME_CASE(E_RCBadExprType);
        ZEL_NAME_CASE(E_RCNullList);
        ZEL_NAME_CASE(E_RCSameValue);
        ZEL_NAME_CASE(E_RCNotFound);
        ZEL_NAME_CASE(E_RCNotInTree);
        ZEL_NAME_CASE(E_RCDuplicate);
        ZEL_NAME_CASE(E_RCKeyExists);
        ZEL_NAME_CASE(E_RCKeyMissing);
        ZEL_NAME_CASE(E_RCDuplicateDatabase);
        ZEL_NAME_CASE(E_RCDuplicateTable);
        ZEL_NAME_CASE(E_RCNotOneValue);
        ZEL_NAME_CASE(E_RCRefused);
        ZEL_NAME_CASE(E_RCBadColumnValue);
        ZEL_NAME_CASE(E_RCNotInitialised);
        ZEL_NAME_CASE(E_RCBranchTaken);
        ZEL_NAME_CASE(E_RCHasKernel);
        ZEL_NAME_CASE(E_RCSyntax);
        ZEL_NAME_CASE(E_RCUnsupported);
        ZEL_NAME_CASE(E_RCNoText);
        ZEL_NAME_CASE(E_RCTimeLimit);
        ZEL_NAME_CASE(E_RCLockSetup);
        ZEL_NAME_CASE(E_RCLockTeardown);
        ZEL_NAME_CASE(E_RCOpenFailed);
        ZEL_NAME_CASE(E_RCFileOpen);
        ZEL_NAME_CASE(E_RCFileRead);
        ZEL_NAME_CASE(E_RCFileClose);
        ZEL_NAME_CASE(E_RCMalformed);
        ZEL_NAME_CASE(E_RCPageRead);
        ZEL_NAME_CASE(E_RCPageWrite);
        ZEL_NAME_CASE(E_RCNoHandle);
        ZEL_NAME_CASE(E_RCCacheClose);
        ZEL_NAME_CASE(E_RCLibraryOpen);
        ZEL_NAME_CASE(E_RCBadOption);
        ZEL_NAME_CASE(E_RCBadOptionType);
        ZEL_NAME_CASE(E_RCOptionOverridden);
        ZEL_NAME_CASE(E_RCFieldMissing);
        ZEL_NAME_CASE(E_RCNoClassName);
        ZEL_NAME_CASE(E_RCBadConfiguration);
        ZEL_NAME_CASE(E_RCNotEncoded);
        default:
            return nullptr;
    }
}
